import QtQuick
import CorvantaSdkVideo.Editor

Pressable {
    id: button

    required property string icon
    property real diameter: 48
    property real iconSize: 24

    implicitWidth: diameter
    implicitHeight: diameter

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: CorvantaColor.gray
        antialiasing: true
    }
    CorvantaImage {
        anchors.centerIn: parent
        width: button.iconSize
        height: button.iconSize
        name: button.icon
    }
    FocusRing {
        target: button
        radius: width / 2
    }
}
