#pragma once

#include <CorvantaSdkVideo/Editor/Presentation/EditorCover.hpp>

#include <QPointer>
#include <QQmlEngine>
#include <QQuickWindow>

namespace corvanta {

/// The window that holds the editor over its presenter.
class CorvantaSdkVideoEditorViewController : public QQuickWindow {
    Q_OBJECT

  public:
    using Completion = std::function<void(const CorvantaSdkVideoEditorResult&)>;

    /// Throws what the view model and the screen throw.
    CorvantaSdkVideoEditorViewController(QWindow& presenter, const CorvantaSdkVideoFile& input,
                                         const std::optional<CorvantaSdkVideoFileDescriptor>& output,
                                         Completion onComplete);

    /// Shows the window in full over the presenter, as soon as that has come up.
    void present();
    /// Slides the screen out, closes the window and then calls `dismissed`.
    void dismiss(std::function<void()> dismissed);

    OrientationManager::OrientationMask supportedInterfaceOrientations() const {
        return OrientationManager::shared().supportedOrientation();
    }

  Q_SIGNALS:
    /// The window is closed for good.
    void dismissed();

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void addChildren(const CorvantaSdkVideoFile& input,
                     const std::optional<CorvantaSdkVideoFileDescriptor>& output, Completion onComplete);

    QPointer<QWindow> presenter_;
    QQmlEngine engine_;
    std::unique_ptr<EditorCover> child_;
};

} // namespace corvanta
