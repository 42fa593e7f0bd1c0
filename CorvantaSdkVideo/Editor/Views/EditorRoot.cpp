#include <CorvantaSdkVideo/Editor/Views/EditorRoot.hpp>

#include <CorvantaSdkVideo/Editor/CutChoice.hpp>
#include <CorvantaSdkVideo/Editor/Playhead.hpp>
#include <CorvantaSdkVideo/Editor/StripZoom.hpp>
#include <CorvantaSdkVideo/Editor/Waveform.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>

#include <utility>

namespace corvanta {

EditorRoot::EditorRoot(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemIsFocusScope);
    Logger::addLog(Event::initEditVideoScreen, EventMessage::initEditVideoScreen());
}

EditorRoot::~EditorRoot() = default;

void EditorRoot::setViewModel(CorvantaSdkVideoEditorViewModel* viewModel) {
    if (viewModel != viewModel_) {
        viewModel_ = viewModel;
        cutChoice_ = viewModel != nullptr ? std::make_unique<CutChoice>(*viewModel) : nullptr;
        stripZoom_ = viewModel != nullptr ? std::make_unique<StripZoom>(*viewModel) : nullptr;
        waveform_ = viewModel != nullptr ? std::make_unique<Waveform>(*viewModel) : nullptr;
        playhead_ = viewModel != nullptr ? std::make_unique<Playhead>(*viewModel) : nullptr;
        Q_EMIT viewModelChanged();
    }
}

void EditorRoot::setOrientationManager(OrientationManager* orientationManager) {
    if (orientationManager != orientationManager_) {
        orientationManager_ = orientationManager;
        Q_EMIT orientationManagerChanged();
    }
}

void EditorRoot::trimVideo() {
    if (viewModel_) {
        cutChoice_->confirm(dismissing());
    }
}

void EditorRoot::closeTrimmer() {
    if (viewModel_) {
        viewModel_->closeTrimmer(dismissing());
    }
}

void EditorRoot::requestClose() {
    if (!viewModel_ || viewModel_->isTrimming()) {
        return;
    }
    if (viewModel_->hasChanges()) {
        // An alert would hide the question.
        viewModel_->clearError();
        cutChoice_->takeBack();
        setAskedToLeave(true);
    } else {
        closeTrimmer();
    }
}

void EditorRoot::stay() { setAskedToLeave(false); }

void EditorRoot::setAskedToLeave(bool isAsked) {
    if (std::exchange(isAskedToLeave_, isAsked) != isAsked) {
        Q_EMIT isAskedToLeaveChanged();
    }
}

std::function<void()> EditorRoot::dismissing() {
    return [view = QPointer(this)] {
        if (view) {
            Q_EMIT view->dismiss();
        }
    };
}

} // namespace corvanta
