import QtQuick
import CorvantaSdkVideo.Editor

GrayButton {
    required property CorvantaSdkVideoEditorViewModel viewModel

    label: qsTr("Play")
    icon: "play"
    diameter: 40
    iconSize: 20
    onClicked: viewModel.handleAction()
}
