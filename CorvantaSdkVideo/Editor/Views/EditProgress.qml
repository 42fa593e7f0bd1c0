import QtQuick
import CorvantaSdkVideo.Editor

/// How far the edit has come, and a way to end it; not for one that is done in no time.
Rectangle {
    id: box

    required property CorvantaSdkVideoEditorViewModel viewModel
    readonly property int percent: Math.round(100 * viewModel.editProgress)
    property bool isCancelled: false

    implicitHeight: column.height
    radius: 14
    color: "#e02c2c2e"
    visible: viewModel.isTrimming && !patience.running
    antialiasing: true

    Timer {
        id: patience
        interval: 300
    }
    Connections {
        target: box.viewModel

        function onIsTrimmingChanged() {
            box.isCancelled = false
            if (box.viewModel.isTrimming) {
                patience.restart()
            }
        }
    }

    Column {
        id: column
        width: parent.width
        padding: 16
        spacing: 12

        Text {
            width: parent.width - 2 * parent.padding
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideRight
            text: box.isCancelled ? qsTr("Cancelling") : qsTr("Writing the video: %1%").arg(box.percent)
            color: "white"
            font.pixelSize: 15
        }
        Rectangle {
            id: bar

            readonly property real value: box.percent
            readonly property real minimumValue: 0
            readonly property real maximumValue: 100

            width: parent.width - 2 * parent.padding
            height: 6
            radius: 3
            color: CorvantaColor.gray
            antialiasing: true

            Accessible.role: Accessible.ProgressBar
            Accessible.name: qsTr("Progress")

            Rectangle {
                width: Math.max(parent.height, parent.width * box.viewModel.editProgress)
                height: parent.height
                radius: 3
                color: CorvantaColor.ambar
                antialiasing: true
            }
        }
        Pressable {
            id: cancel
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.max(96, cancelText.implicitWidth + 2 * 16)
            height: 36
            enabled: !box.isCancelled
            label: qsTr("Cancel")
            onClicked: {
                box.isCancelled = true
                box.viewModel.cancelEdit()
            }

            Rectangle {
                anchors.fill: parent
                radius: 8
                color: CorvantaColor.gray
                antialiasing: true
            }
            Text {
                id: cancelText
                anchors.centerIn: parent
                text: cancel.label
                color: "white"
                font.pixelSize: 15
            }
            FocusRing {
                target: cancel
                radius: 10
            }
        }
    }
}
