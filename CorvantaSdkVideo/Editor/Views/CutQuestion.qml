import QtQuick
import CorvantaSdkVideo.Editor

/// Asks how to cut where copying would lose something.
Question {
    id: question

    required property CutChoice cutChoice

    isOpen: cutChoice.isAsked
    title: qsTr("Exact or fast?")
    message: cutChoice.loss + " " + qsTr("An exact cut keeps all of it.")
    answers: [
        { label: qsTr("Exact"), detail: cutChoice.exactTime },
        { label: qsTr("Fast"), detail: qsTr("at once") },
        { label: qsTr("Back") }
    ]
    onAnswered: index => {
        if (index === 0) {
            cutChoice.takeExact()
        } else if (index === 1) {
            cutChoice.takeFast()
        } else {
            cutChoice.takeBack()
        }
    }
}
