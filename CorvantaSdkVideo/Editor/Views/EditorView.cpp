#include <CorvantaSdkVideo/Editor/Views/EditorView.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>

namespace corvanta {

EditorView::EditorView(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemIsFocusScope);
    Logger::addLog(Event::initEditVideoScreen, EventMessage::initEditVideoScreen());
}

void EditorView::setViewModel(CorvantaSdkVideoEditorViewModel* viewModel) {
    if (viewModel != viewModel_) {
        viewModel_ = viewModel;
        Q_EMIT viewModelChanged();
    }
}

void EditorView::setOrientationManager(OrientationManager* orientationManager) {
    if (orientationManager != orientationManager_) {
        orientationManager_ = orientationManager;
        Q_EMIT orientationManagerChanged();
    }
}

void EditorView::trimVideo() {
    if (viewModel_) {
        viewModel_->trimVideo(dismissing());
    }
}

void EditorView::closeTrimmer() {
    if (viewModel_) {
        viewModel_->closeTrimmer(dismissing());
    }
}

std::function<void()> EditorView::dismissing() {
    return [view = QPointer(this)] {
        if (view) {
            Q_EMIT view->dismiss();
        }
    };
}

} // namespace corvanta
