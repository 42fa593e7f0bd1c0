#include <CorvantaSdkVideo/Editor/Presentation/PresentCorvantaSdkVideoEditorView.hpp>

#include <CorvantaSdkVideo/Editor/Presentation/CorvantaSdkVideoEditorViewController.hpp>

#include <stdexcept>
#include <utility>

namespace corvanta {

namespace {

/// A child of the presenter, which takes the editor with it when it goes.
class PresentedEditor : public QObject {
  public:
    static PresentedEditor* of(const QWindow& presenter) {
        for (QObject* const child : presenter.children()) {
            if (auto* const presented = dynamic_cast<PresentedEditor*>(child)) {
                return presented;
            }
        }
        return nullptr;
    }

    static void hold(QWindow& presenter, std::unique_ptr<CorvantaSdkVideoEditorViewController> controller) {
        auto presented = std::make_unique<PresentedEditor>(std::move(controller));
        presented->setParent(&presenter);
        presented.release()->controller_->present();
    }

    explicit PresentedEditor(std::unique_ptr<CorvantaSdkVideoEditorViewController> controller)
        : controller_(std::move(controller)) {
        connect(controller_.get(), &CorvantaSdkVideoEditorViewController::dismissed, this, [this] {
            setParent(nullptr);
            deleteLater();
        });
    }

    CorvantaSdkVideoEditorViewController& controller() { return *controller_; }

  private:
    std::unique_ptr<CorvantaSdkVideoEditorViewController> controller_;
};

} // namespace

bool presentCorvantaSdkVideoEditorView(QWindow* presenter, const CorvantaSdkVideoFile& input,
                                       const CorvantaSdkVideoFileDescriptor& output,
                                       std::function<void(const CorvantaSdkVideoEditorResult&)> onComplete) {
    if (presenter == nullptr) {
        throw std::invalid_argument("The editor needs a window to be presented by");
    }
    if (PresentedEditor* const presented = PresentedEditor::of(*presenter)) {
        presented->controller().raise();
        presented->controller().requestActivate();
        return false;
    }
    const auto dismissAndAnswer = [presenter = QPointer(presenter), onComplete = std::move(onComplete)](
                                      const CorvantaSdkVideoEditorResult& result) {
        if (PresentedEditor* const presented = presenter ? PresentedEditor::of(*presenter) : nullptr) {
            presented->controller().dismiss([onComplete, result] {
                if (onComplete) {
                    onComplete(result);
                }
            });
        }
    };
    PresentedEditor::hold(*presenter, std::make_unique<CorvantaSdkVideoEditorViewController>(
                                          *presenter, input, output, dismissAndAnswer));
    return true;
}

} // namespace corvanta
