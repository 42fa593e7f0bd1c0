import QtQuick
import CorvantaSdkVideo.Editor

Column {
    id: dragger

    required property CorvantaSdkVideoEditorViewModel viewModel

    /// Up is louder.
    function step(up) {
        const distance = up ? -8 : 8
        const y = bar.height - viewModel.volumeHeight + distance
        viewModel.changeVolume(Qt.point(0, Math.max(0, Math.min(y, bar.height - 1))), Qt.size(0, distance),
                               bar.frame)
    }

    spacing: 16
    // The software renderer scales rough.
    layer.enabled: scale < 1
    layer.smooth: true

    Item {
        id: bar

        /// In percent.
        readonly property real value: Math.round(dragger.viewModel.volumeHeight / height * 100)
        readonly property real minimumValue: 0
        readonly property real maximumValue: 100
        readonly property rect frame: Qt.rect(0, 0, width, height)

        width: 48
        height: 192
        activeFocusOnTab: true

        Accessible.role: Accessible.Slider
        Accessible.name: qsTr("Volume %1%").arg(value)
        Accessible.focusable: true
        Accessible.onIncreaseAction: dragger.step(true)
        Accessible.onDecreaseAction: dragger.step(false)

        Rectangle {
            anchors.fill: parent
            radius: 24
            color: CorvantaColor.gray
            antialiasing: true
        }
        // A clip knows no round corners: the lower part of a whole white bar shows.
        Item {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            height: dragger.viewModel.volumeHeight
            clip: true

            Rectangle {
                anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
                height: bar.height
                radius: 24
                color: "white"
                antialiasing: true
            }
        }
        FocusRing {
            target: bar
            radius: 28
        }
        MouseArea {
            property point start

            function change(mouse) {
                dragger.viewModel.changeVolume(Qt.point(mouse.x, mouse.y),
                                               Qt.size(mouse.x - start.x, mouse.y - start.y), bar.frame)
            }

            anchors.fill: parent
            preventStealing: true
            onPressed: mouse => {
                start = Qt.point(mouse.x, mouse.y)
                change(mouse)
            }
            onPositionChanged: mouse => change(mouse)
        }
    }

    Pressable {
        id: mute

        width: 48
        height: 48
        label: dragger.viewModel.volumeHeight > 0 ? qsTr("Mute") : qsTr("Unmute")
        onClicked: dragger.viewModel.muteVideo()

        Rectangle {
            anchors.fill: parent
            radius: width / 2
            color: dragger.viewModel.soundBackgroundColor
            antialiasing: true

            Behavior on color {
                ColorAnimation { duration: 200 }
            }
        }
        CorvantaImage {
            anchors.centerIn: parent
            width: 24
            height: 24
            symbol: dragger.viewModel.soundIcon
            color: dragger.viewModel.soundIconColor
        }
        FocusRing {
            target: mute
            radius: width / 2
        }
    }
}
