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
            label: qsTr("Rotate left")
            icon: "rotateLeft"
            onClicked: rotation.viewModel.rotateLeft()
        }
        GrayButton {
            label: qsTr("Rotate right")
            icon: "rotateRight"
            onClicked: rotation.viewModel.rotateRight()
        }
    }
}
