import QtQuick
import CorvantaSdkVideo.Editor

/// How loud the clip is over its length, the kept range brighter and as high as the volume; or that it has no sound.
Rectangle {
    id: sound

    required property CorvantaSdkVideoEditorViewModel viewModel
    required property Waveform waveform

    readonly property bool isSilent: viewModel.isReady && !viewModel.hasSound
    readonly property real pointsPerSecond: viewModel.videoDuration > 0 ? width / viewModel.videoDuration : 0
    readonly property real loudness: viewModel.volumeHeight / 192

    function make() {
        if (visible) {
            waveform.make()
        }
    }

    implicitHeight: 64
    radius: 8
    color: "#80000000"
    antialiasing: true
    onVisibleChanged: make()

    Accessible.role: Accessible.Graphic
    Accessible.name: isSilent ? silence.text : qsTr("Waveform")

    Connections {
        target: sound.viewModel

        function onIsReadyChanged() { sound.make() }
    }

    component Wave: Image {
        y: (sound.height - height) / 2
        width: sound.width
        height: Math.max(2, sound.height * sound.loudness)
        source: sound.waveform.picture
        smooth: true
    }

    Wave { opacity: 0.35 }
    Item {
        x: sound.viewModel.trimmerStart * sound.pointsPerSecond
        width: sound.viewModel.keptLength * sound.pointsPerSecond
        height: parent.height
        clip: true

        Wave { x: -parent.x }
    }
    Text {
        id: silence
        anchors.centerIn: parent
        visible: sound.isSilent
        text: qsTr("No sound")
        color: "white"
        font.pixelSize: 17
    }
}
