import QtQuick
import CorvantaSdkVideo.Editor

/// Where the player stands, as a line over the strip.
Item {
    id: line

    required property CorvantaSdkVideoEditorViewModel viewModel
    required property Playhead playhead
    /// Between the handles.
    required property real first
    required property real last
    required property real stripWidth

    readonly property real value: playhead.seconds
    readonly property real minimumValue: viewModel.trimmerStart
    readonly property real maximumValue: viewModel.stopAt
    readonly property real stepSize: viewModel.frameDuration
    readonly property real position: viewModel.videoDuration > 0 ? value / viewModel.videoDuration * stripWidth : 0

    width: 3
    x: Math.max(first, Math.min(position, last)) - width / 2
    visible: viewModel.isReady

    Accessible.role: Accessible.Slider
    Accessible.name: qsTr("Position")
    Accessible.onIncreaseAction: playhead.moveBy(2)
    Accessible.onDecreaseAction: playhead.moveBy(-2)

    Rectangle {
        anchors.fill: parent
        anchors.margins: -1
        radius: 2
        color: "#90000000"
        antialiasing: true
    }
    Rectangle {
        anchors.fill: parent
        radius: 1.5
        color: "white"
        antialiasing: true
    }
}
