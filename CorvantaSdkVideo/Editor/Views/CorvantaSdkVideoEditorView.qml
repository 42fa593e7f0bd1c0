import QtQuick
import CorvantaSdkVideo.Editor

/// The screen: the editor, or what stands in its place.
EditorRoot {
    id: root

    Rectangle {
        anchors.fill: parent
        color: "black"
    }
    // Hidden by an error and not unloaded, so that all of it comes back.
    Loader {
        anchors.fill: parent
        active: root.viewModel.isAuthenticated
        visible: !root.viewModel.hasError
        focus: visible && active
        sourceComponent: VideoEditor {
            focus: true
            view: root
        }
    }
    Loader {
        anchors.fill: parent
        active: !root.viewModel.isAuthenticated && !root.viewModel.hasError
        focus: active
        sourceComponent: UnauthenticatedView {
            focus: true
            onComplete: root.closeTrimmer()
        }
    }
    Loader {
        anchors.fill: parent
        active: root.viewModel.hasError
        focus: active
        sourceComponent: ErrorView {
            focus: true
            error: root.viewModel.errorDescription
            onComplete: root.viewModel.clearError()
        }
    }
}
