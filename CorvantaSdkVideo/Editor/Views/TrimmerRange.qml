import QtQuick
import CorvantaSdkVideo.Editor

Rectangle {
    required property CorvantaSdkVideoEditorViewModel viewModel

    implicitWidth: range.implicitWidth + 2 * 8
    implicitHeight: range.implicitHeight + 2 * 8
    radius: 4
    color: CorvantaColor.gray
    antialiasing: true

    Text {
        id: range
        anchors.centerIn: parent
        text: parent.viewModel.trimmerRange
        color: "white"
        font.pixelSize: 17
        Accessible.name: text
    }
}
