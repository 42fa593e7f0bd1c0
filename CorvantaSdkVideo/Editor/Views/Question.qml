import QtQuick
import CorvantaSdkVideo.Editor

/// A question over the dimmed screen, with its answers one below the other. The first one is ready for Return.
FocusScope {
    id: question

    required property bool isOpen
    property string title
    property string message
    /// Each with a `label`, and a `detail` that may be empty.
    property var answers: []
    /// The answer that Escape gives.
    property int escapeAnswer: answers.length - 1

    signal answered(int index)

    function focusAnswer(index) {
        const button = buttons.itemAt(index)
        if (button) {
            button.forceActiveFocus()
        }
    }

    visible: isOpen
    enabled: visible
    onEnabledChanged: if (enabled) focusAnswer(0)

    Keys.onEscapePressed: answered(escapeAnswer)
    // Nothing of the screen behind hears of any other key.
    Keys.onPressed: event => event.accepted = true

    Rectangle {
        anchors.fill: parent
        color: "black"
        opacity: 0.6

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onWheel: wheel => wheel.accepted = true
        }
    }
    Rectangle {
        anchors.centerIn: parent
        width: Math.min(320, parent.width - 2 * 24)
        height: texts.height + answerColumn.height
        radius: 14
        color: "#2c2c2e"
        antialiasing: true

        Accessible.role: Accessible.Dialog
        Accessible.name: question.title + (/[.?!]$/.test(question.title) ? " " : ". ") + question.message

        Column {
            id: texts
            width: parent.width
            padding: 24
            spacing: 8

            Text {
                width: parent.width - 2 * parent.padding
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: question.title
                color: "white"
                font { pixelSize: 19; weight: Font.DemiBold }
            }
            Text {
                width: parent.width - 2 * parent.padding
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                visible: text !== ""
                text: question.message
                color: "#d0d0d0"
                font.pixelSize: 15
            }
        }
        Column {
            id: answerColumn
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }

            Repeater {
                id: buttons
                model: question.answers

                Pressable {
                    id: answer

                    required property var modelData
                    required property int index

                    width: answerColumn.width
                    height: 52
                    label: modelData.label
                    Accessible.description: modelData.detail ?? ""
                    onClicked: question.answered(index)
                    Keys.onUpPressed: question.focusAnswer(index - 1)
                    Keys.onDownPressed: question.focusAnswer(index + 1)

                    Rectangle {
                        width: parent.width
                        height: 1
                        color: CorvantaColor.gray
                    }
                    Column {
                        anchors.centerIn: parent

                        Text {
                            anchors.horizontalCenter: parent.horizontalCenter
                            text: answer.modelData.label
                            color: answer.index === 0 ? CorvantaColor.ambar : "white"
                            font { pixelSize: 17; weight: answer.index === 0 ? Font.DemiBold : Font.Normal }
                        }
                        Text {
                            anchors.horizontalCenter: parent.horizontalCenter
                            visible: text !== ""
                            text: answer.modelData.detail ?? ""
                            color: "#d0d0d0"
                            font.pixelSize: 13
                        }
                    }
                    FocusRing {
                        target: answer
                        anchors.margins: 4
                        radius: 8
                    }
                }
            }
        }
    }
}
