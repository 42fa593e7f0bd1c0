import QtQuick
import CorvantaSdkVideo.Editor

Rectangle {
    id: row

    required property CorvantaSdkVideoEditorViewModel viewModel

    implicitHeight: trim.height + 2 * 8
    color: CorvantaColor.gray

    EditionTab {
        id: trim
        anchors { left: parent.left; leftMargin: 32; top: parent.top; topMargin: 8 }
        label: qsTr("Trim")
        icon: "trim"
        isSelected: row.viewModel.isTrimmerVisible
        onClicked: row.viewModel.showTrimmer()
    }
    EditionTab {
        // Both spacers of the row are alike.
        x: (trim.x + trim.width + rotation.x - width) / 2
        anchors { top: parent.top; topMargin: 8 }
        label: qsTr("Sound")
        icon: "sound"
        isSelected: row.viewModel.isSoundVisible
        onClicked: row.viewModel.showSound()
    }
    EditionTab {
        id: rotation
        anchors { right: parent.right; rightMargin: 32; top: parent.top; topMargin: 8 }
        label: qsTr("Rotation")
        icon: "rotate"
        isSelected: row.viewModel.isRotationVisible
        onClicked: row.viewModel.showRotation()
    }
}
