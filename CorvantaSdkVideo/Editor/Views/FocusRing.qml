import QtQuick
import CorvantaSdkVideo.Editor

/// Shows which control the keyboard is on.
Rectangle {
    required property Item target

    anchors.fill: target
    anchors.margins: -4
    visible: target.activeFocus
    color: "transparent"
    border.color: CorvantaColor.ambar
    border.width: 2
    antialiasing: true
}
