import QtQuick
import CorvantaSdkVideo.Editor

/// Brings the whole clip back; there while less is kept.
Pressable {
    id: reset

    required property CorvantaSdkVideoEditorViewModel viewModel

    visible: !viewModel.keepsAll
    label: qsTr("Reset")
    onClicked: viewModel.resetRange()

    Text {
        anchors.fill: parent
        horizontalAlignment: Text.AlignRight
        verticalAlignment: Text.AlignVCenter
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 9
        text: reset.label
        color: CorvantaColor.ambar
        font.pixelSize: 15
    }
    FocusRing {
        target: reset
        radius: 6
    }
}
