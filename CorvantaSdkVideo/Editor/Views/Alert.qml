import QtQuick
import CorvantaSdkVideo.Editor

/// A black surface with one message on it that has to be accepted.
FocusScope {
    id: alert

    required property string title
    required property string message

    signal complete

    Keys.onReturnPressed: complete()
    Keys.onEnterPressed: complete()
    Keys.onSpacePressed: complete()
    Keys.onEscapePressed: complete()

    Rectangle {
        anchors.fill: parent
        color: "black"

        // Nothing below is reached.
        MouseArea { anchors.fill: parent }
    }
    Rectangle {
        anchors.centerIn: parent
        width: Math.min(320, parent.width - 2 * 24)
        height: texts.height + accept.height
        radius: 14
        color: "#2c2c2e"
        antialiasing: true

        Accessible.role: Accessible.AlertMessage
        Accessible.name: alert.title + ". " + alert.message

        Column {
            id: texts
            width: parent.width
            padding: 24
            spacing: 8

            Text {
                width: parent.width - 2 * parent.padding
                horizontalAlignment: Text.AlignHCenter
                text: alert.title
                color: "white"
                font { pixelSize: 19; weight: Font.DemiBold }
            }
            Text {
                width: parent.width - 2 * parent.padding
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: alert.message
                color: "#d0d0d0"
                font.pixelSize: 15
            }
        }
        Rectangle {
            anchors { left: parent.left; right: parent.right; top: accept.top }
            height: 1
            color: CorvantaColor.gray
        }
        Pressable {
            id: accept
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            height: 52
            focus: true
            label: qsTr("Accept")
            onClicked: alert.complete()

            Text {
                anchors.centerIn: parent
                text: qsTr("ACCEPT")
                color: CorvantaColor.ambar
                font { pixelSize: 17; weight: Font.DemiBold }
            }
        }
    }
}
