#include <CorvantaSdkVideo/Editor/Presentation/CorvantaSdkVideoEditorViewController.hpp>

#include <QEvent>
#include <QSurfaceFormat>

#include <utility>

namespace corvanta {

namespace {

/// Smooths the borders of the symbols.
constexpr int samples = 4;

} // namespace

CorvantaSdkVideoEditorViewController::CorvantaSdkVideoEditorViewController(
    QWindow& presenter, const CorvantaSdkVideoFile& input,
    const std::optional<CorvantaSdkVideoFileDescriptor>& output, Completion onComplete)
    : presenter_(&presenter) {
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSamples(samples);
    setFormat(format);
    setColor(Qt::black);
    setTitle(presenter.title());
    setTransientParent(&presenter);
    setModality(Qt::WindowModal);
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
