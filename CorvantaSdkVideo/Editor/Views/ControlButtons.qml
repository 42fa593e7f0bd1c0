import QtQuick
import CorvantaSdkVideo.Editor

Item {
    id: row

    required property EditorRoot view
    readonly property CorvantaSdkVideoEditorViewModel viewModel: view.viewModel

    implicitHeight: close.height

    GrayButton {
        id: close
        anchors.left: parent.left
        label: qsTr("Close")
        icon: "close"
        // It does nothing while an edit runs.
        enabled: !row.viewModel.isTrimming
        onClicked: row.view.requestClose()
    }

    Pressable {
        id: confirm

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: confirmText.implicitWidth + 2 * 8
        height: confirmText.implicitHeight + 2 * 8
        visible: !row.viewModel.isTrimming && !row.viewModel.isUnreadable
        enabled: row.viewModel.isReady
        label: qsTr("Continue")
        onClicked: row.view.trimVideo()

        Rectangle {
            anchors.fill: parent
            radius: 2
            color: Qt.rgba(0, 0, 0, 0.7)
            border.color: "white"
            border.width: 1
        }
        Text {
            id: confirmText
            anchors.centerIn: parent
            text: qsTr("CONTINUE")
            color: "white"
            font.pixelSize: 17
        }
        FocusRing {
            target: confirm
            radius: 6
        }
    }
    ProgressSpinner {
        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        visible: row.viewModel.isTrimming
    }
}
