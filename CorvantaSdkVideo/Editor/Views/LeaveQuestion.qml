import QtQuick
import CorvantaSdkVideo.Editor

/// Asks before changes are discarded.
Question {
    id: question

    required property EditorRoot view

    isOpen: view.isAskedToLeave
    title: qsTr("Discard the changes?")
    message: qsTr("The video stays as it was.")
    answers: [{ label: qsTr("Keep editing") }, { label: qsTr("Discard") }]
    escapeAnswer: 0
    onAnswered: index => {
        view.stay()
        if (index === 1) {
            view.closeTrimmer()
        }
    }
}
