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
        { label: qsTr("Exact"), detail: cutChoice.exactTime, take: () => cutChoice.takeExact() },
        { label: qsTr("Fast"), detail: qsTr("at once"), take: () => cutChoice.takeFast() },
        { label: qsTr("Back"), take: () => cutChoice.takeBack() }
    ].filter((answer, index) => index !== 1 || cutChoice.isFastPossible)
    onAnswered: index => answers[index].take()
}
