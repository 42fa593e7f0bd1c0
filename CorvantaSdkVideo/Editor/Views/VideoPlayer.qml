import QtQuick
import CorvantaSdkVideo.Editor

Item {
    id: reader

    required property CorvantaSdkVideoEditorViewModel viewModel

    required property Waveform waveform

    function stepVolume(up) { dragger.step(up) }

    // A phone's clip tells its turn apart from its size: what is shown counts.
    readonly property real aspectRatio: player.frameAspectRatio > 0 ? player.frameAspectRatio
                                                                    : viewModel.videoAspectRatio
    readonly property real uprightHeight: Math.min(height, width / aspectRatio)
    /// Turned by a quarter, the picture spans the reader's width, if there is the height for that.
    readonly property real turnedLength: Math.min(width, height / Math.min(1, aspectRatio))
    readonly property real turnedHeight: Math.min(turnedLength, turnedLength / aspectRatio)

    function centered(room) {
        return quarter > 0 ? room / 2 : Math.round(room / 2)
    }

    property real quarter: viewModel.videoIsInPortraitMode ? 0 : 1
    Behavior on quarter {
        NumberAnimation { duration: 300; easing.type: Easing.InOutQuad }
    }

    CorvantaSdkVideoPlayer {
        id: player

        // On whole points while it stands upright, and in the very middle while it is turned.
        x: reader.centered(reader.width - width)
        y: reader.centered(reader.height - height)
        height: reader.uprightHeight + reader.quarter * (reader.turnedHeight - reader.uprightHeight)
        width: height * reader.aspectRatio
        radius: 32
        viewModel: reader.viewModel
        rotation: reader.viewModel.videoRotation

        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Video")

        Behavior on rotation {
            RotationAnimation { duration: 300; easing.type: Easing.InOutQuad; direction: RotationAnimation.Shortest }
        }
        MouseArea {
            anchors.fill: parent
            onClicked: reader.viewModel.handleAction()
        }
    }

    SoundPicture {
        anchors { left: parent.left; right: parent.right; leftMargin: 16; rightMargin: 16 }
        // Level with the middle of the bar.
        y: dragger.scale * (dragger.padding + 192 / 2) - height / 2
        height: implicitHeight * dragger.scale
        viewModel: reader.viewModel
        waveform: reader.waveform
        opacity: dragger.opacity
        visible: opacity > 0
    }
    PlayButton {
        id: play
        anchors.centerIn: parent
        viewModel: reader.viewModel
        visible: !viewModel.isPlaying && !viewModel.isUnreadable
    }
    Text {
        anchors { left: parent.left; right: parent.right; margins: 24; top: play.bottom }
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        visible: text !== ""
        text: reader.viewModel.notice
        color: "white"
        style: Text.Outline
        font.pixelSize: 17
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }

    SoundDragger {
        id: dragger

        readonly property real padding: 32

        anchors { top: parent.top; right: parent.right; topMargin: padding * scale; rightMargin: padding * scale }
        transformOrigin: Item.TopRight
        scale: Math.min(1, reader.height / (height + 2 * padding))
        viewModel: reader.viewModel
        opacity: viewModel.isSoundVisible ? 1 : 0
        visible: opacity > 0
        enabled: viewModel.isSoundVisible

        Behavior on opacity {
            NumberAnimation { duration: 200 }
        }
    }
}
