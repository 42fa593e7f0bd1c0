import QtQuick
import CorvantaSdkVideo.Editor

/// The screen: the editor, or what stands in its place.
EditorView {
    id: view

    Rectangle {
        anchors.fill: parent
        color: "black"
    }
    // Hidden by an error and not unloaded, so that all of it comes back.
    Loader {
        anchors.fill: parent
        active: view.viewModel.isAuthenticated
        visible: !view.viewModel.hasError
        focus: visible && active
        sourceComponent: VideoEditor { view: view }
    }
    Loader {
        anchors.fill: parent
        active: !view.viewModel.isAuthenticated && !view.viewModel.hasError
        focus: active
        sourceComponent: UnauthenticatedView { onComplete: view.closeTrimmer() }
    }
    Loader {
        anchors.fill: parent
        active: view.viewModel.hasError
        focus: active
        sourceComponent: ErrorView {
            error: view.viewModel.errorDescription
            onComplete: view.viewModel.clearError()
        }
    }
}
