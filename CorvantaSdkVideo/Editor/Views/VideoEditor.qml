import QtQuick
import CorvantaSdkVideo.Editor

FocusScope {
    id: reader

    required property EditorRoot view

    readonly property OrientationManager orientationManager: view.orientationManager
    readonly property bool isPortrait: orientationManager.isPortraitModeSupported
    readonly property int landscapeRight: 8
    readonly property int landscapeRotationAngle: orientationManager.supportedOrientation === landscapeRight ? -90 : 90

    Rectangle {
        anchors.fill: parent
        color: "black"
    }
    // In a host that knows landscape alone the layout stays the portrait one, turned by a quarter.
    VideoEditorView {
        // An anchor would round these, which shows when it is turned.
        x: (reader.width - width) / 2
        y: (reader.height - height) / 2
        width: reader.isPortrait ? reader.width : reader.height
        height: reader.isPortrait ? reader.height : reader.width
        rotation: reader.isPortrait ? 0 : reader.landscapeRotationAngle
        focus: true
        view: reader.view
    }
}
