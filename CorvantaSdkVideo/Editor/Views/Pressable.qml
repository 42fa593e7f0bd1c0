import QtQuick

/// What every button does, whatever it looks like: by pointer, keyboard and assistive technology.
Item {
    id: pressable

    /// What it is called.
    required property string label

    signal clicked

    activeFocusOnTab: true
    opacity: !enabled ? 0.5 : area.pressed ? 0.6 : 1

    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.focusable: true
    Accessible.onPressAction: clicked()
    Keys.onSpacePressed: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    MouseArea {
        id: area
        anchors.fill: parent
        cursorShape: Qt.PointingHandCursor
        onClicked: pressable.clicked()
    }
}
