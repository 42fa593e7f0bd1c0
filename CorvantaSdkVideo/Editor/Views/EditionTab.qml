import QtQuick
import CorvantaSdkVideo.Editor

Pressable {
    id: tab

    required property string icon
    required property bool isSelected

    implicitWidth: column.implicitWidth
    implicitHeight: column.implicitHeight

    Accessible.role: Accessible.PageTab
    Accessible.selected: isSelected

    Column {
        id: column
        spacing: 4
        opacity: tab.isSelected ? 1 : 0.5

        CorvantaImage {
            anchors.horizontalCenter: parent.horizontalCenter
            name: tab.icon
        }
        Text {
            text: tab.label
            color: "white"
            font.pixelSize: 17
        }
    }
    FocusRing {
        target: tab
        radius: 6
    }
}
