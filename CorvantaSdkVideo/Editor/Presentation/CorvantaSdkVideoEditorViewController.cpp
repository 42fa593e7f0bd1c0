#include <CorvantaSdkVideo/Editor/Presentation/CorvantaSdkVideoEditorViewController.hpp>

#include <QEvent>
#include <QSurfaceFormat>

#include <utility>

namespace corvanta {

namespace {

/// Smooths the borders of the symbols.
constexpr int samples = 4;

/// Nothing overlaps at this size or above.
constexpr QSize smallestSize(320, 320);

Qt::ScreenOrientation orientationOf(OrientationManager::OrientationMask orientation) {
    using Mask = OrientationManager::OrientationMask;
    switch (orientation) {
    case Mask::landscapeRight:
        return Qt::LandscapeOrientation;
    case Mask::landscapeLeft:
        return Qt::InvertedLandscapeOrientation;
    case Mask::portrait:
        break;
    }
    return Qt::PortraitOrientation;
}

} // namespace

CorvantaSdkVideoEditorViewController::CorvantaSdkVideoEditorViewController(
    QWindow& presenter, const CorvantaSdkVideoFile& input,
    const std::optional<CorvantaSdkVideoFileDescriptor>& output, Completion onComplete)
    : presenter_(&presenter) {
    // What Qt Quick has asked for: without its depth buffer a GPU leaves out whatever is opaque.
    QSurfaceFormat format = requestedFormat();
    format.setSamples(samples);
    setFormat(format);
    setColor(Qt::black);
    setMinimumSize(smallestSize);
    setTitle(presenter.title());
    setTransientParent(&presenter);
    setModality(Qt::WindowModal);
    reportContentOrientationChange(orientationOf(supportedInterfaceOrientations()));
    addChildren(input, output, std::move(onComplete));
}

void CorvantaSdkVideoEditorViewController::addChildren(
    const CorvantaSdkVideoFile& input, const std::optional<CorvantaSdkVideoFileDescriptor>& output,
    Completion onComplete) {
    child_ = std::make_unique<EditorCover>(engine_, *contentItem(),
                                           makeEditorViewModel(input, output, std::move(onComplete)));
    connect(child_.get(), &EditorCover::dismissRequested, this, [this] { dismiss([] {}); });
}

void CorvantaSdkVideoEditorViewController::present() {
    // Only the window manager knows where a window stands that is just being shown.
    const bool isMinimized = presenter_->windowStates().testFlag(Qt::WindowMinimized);
    if (presenter_->isVisible() && !presenter_->isExposed() && !isMinimized) {
        presenter_->installEventFilter(this);
        return;
    }
    setScreen(presenter_->screen());
    setGeometry(presenter_->geometry());
    setWindowStates(presenter_->windowStates() & ~Qt::WindowStates(Qt::WindowMinimized | Qt::WindowActive));
    setVisible(true);
    requestActivate();
    contentItem()->setSize(size());
    child_->present();
}

void CorvantaSdkVideoEditorViewController::dismiss(std::function<void()> afterwards) {
    child_->dismiss([this, afterwards = std::move(afterwards)] {
        setVisible(false);
        // Whoever hears of it may destroy this window.
        const auto done = afterwards;
        Q_EMIT dismissed();
        done();
    });
}

bool CorvantaSdkVideoEditorViewController::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose && presenter_->isExposed()) {
        presenter_->removeEventFilter(this);
        if (!child_->isDismissing()) {
            present();
        }
    }
    return QQuickWindow::eventFilter(watched, event);
}

// The window's own close button is one more way to leave without an edit.
bool CorvantaSdkVideoEditorViewController::event(QEvent* event) {
    if (event->type() == QEvent::Close && !child_->isDismissing()) {
        event->ignore();
        child_->close();
        return true;
    }
    return QQuickWindow::event(event);
}

} // namespace corvanta
