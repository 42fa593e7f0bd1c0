#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEditorResult.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/OrientationManager.hpp>
#include <CorvantaSdkVideo/Editor/Views/EditorRoot.hpp>

#include <QPointer>
#include <QPropertyAnimation>

#include <functional>
#include <memory>
#include <optional>

class QQmlEngine;
class QQuickItem;

namespace corvanta {

/// The view model on the module's own collaborators. Throws PlayerUnavailable.
std::unique_ptr<CorvantaSdkVideoEditorViewModel>
makeEditorViewModel(const CorvantaSdkVideoFile& input,
                    const std::optional<CorvantaSdkVideoFileDescriptor>& output,
                    CorvantaSdkVideoEditorViewModel::Completion completion);

/// The editor's screen laid over an item, as large as that is at any time. It slides in from below, and out.
class EditorCover : public QObject {
    Q_OBJECT

  public:
    /// `engine` must outlive the cover. Throws std::runtime_error if the screen's files can't
    /// be loaded, and says why.
    EditorCover(QQmlEngine& engine, QQuickItem& covered,
                std::unique_ptr<CorvantaSdkVideoEditorViewModel> viewModel,
                OrientationManager& orientationManager = OrientationManager::shared());
    ~EditorCover() override;

    void present();
    /// Calls `dismissed` when the cover has slid out, and does nothing if it is already on its way.
    void dismiss(std::function<void()> dismissed);
    bool isDismissing() const { return static_cast<bool>(dismissed_); }
    /// False also when the item has gone.
    bool covers(const QQuickItem& item) const { return covered_ == &item; }

    /// As the close button does: nothing while an edit runs, and a question first if there are changes.
    void close() { view_->requestClose(); }

    CorvantaSdkVideoEditorViewModel& viewModel() const { return *viewModel_; }
    EditorRoot& view() const { return *view_; }

  Q_SIGNALS:
    /// The screen wants to be dismissed.
    void dismissRequested();

  private:
    void fillCovered();
    void slideTo(double y);

    QPointer<QQuickItem> covered_;
    /// Goes after the view that is bound to it.
    std::unique_ptr<CorvantaSdkVideoEditorViewModel> viewModel_;
    std::unique_ptr<EditorRoot> view_;
    QPropertyAnimation slide_;
    std::function<void()> dismissed_;
};

} // namespace corvanta
