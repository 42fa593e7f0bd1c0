import QtQuick
import CorvantaSdkVideo.Editor

Item {
    id: rotation

    required property CorvantaSdkVideoEditorViewModel viewModel

    implicitHeight: row.implicitHeight

    Row {
        id: row
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 32

        GrayButton {
            label: "Rotate left"
            icon: "rotateLeft"
            onClicked: rotation.viewModel.rotateLeft()
        }
        GrayButton {
            label: "Rotate right"
            icon: "rotateRight"
            onClicked: rotation.viewModel.rotateRight()
        }
    }
}
