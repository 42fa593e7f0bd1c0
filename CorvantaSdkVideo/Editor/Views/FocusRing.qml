import QtQuick

/// Shows which control the keyboard is on: light and dark, for any ground.
Rectangle {
    id: ring

    required property Item target

    anchors.fill: target
    anchors.margins: -4
    visible: target.activeFocus
    color: "transparent"
    border.color: "white"
    border.width: 2
    antialiasing: true

    Rectangle {
        anchors.fill: parent
        anchors.margins: -1
        radius: ring.radius + 1
        color: "transparent"
        border.color: "black"
        border.width: 1
        antialiasing: true
    }
}
