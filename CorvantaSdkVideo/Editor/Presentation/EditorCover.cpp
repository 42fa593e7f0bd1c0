#include <CorvantaSdkVideo/Editor/Presentation/EditorCover.hpp>

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>
#include <CorvantaSdkVideo/Editor/EditorTexts.hpp>
#include <CorvantaSdkVideo/Editor/Player/QtMediaPlayer.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>

#include <stdexcept>
#include <utility>

namespace corvanta {

namespace {

constexpr int slideMilliseconds = 250;

const QUrl screenFile(QStringLiteral(
    "qrc:/qt-project.org/imports/CorvantaSdkVideo/Editor/Views/CorvantaSdkVideoEditorView.qml"));

std::unique_ptr<EditorRoot> makeView(QQmlEngine& engine, const QVariantMap& properties) {
    installEditorTexts();
    QQmlComponent component(&engine, screenFile);
    // Qt 6.4 doesn't survive the making of a component that has errors.
    std::unique_ptr<QObject> made(component.isReady() ? component.createWithInitialProperties(properties)
                                                      : nullptr);
    auto* const view = qobject_cast<EditorRoot*>(made.get());
    if (view == nullptr) {
        throw std::runtime_error("The editor's screen can't be shown: " +
                                 component.errorString().toStdString());
    }
    QQmlEngine::setObjectOwnership(view, QQmlEngine::CppOwnership);
    static_cast<void>(made.release());
    return std::unique_ptr<EditorRoot>(view);
}

} // namespace

std::unique_ptr<CorvantaSdkVideoEditorViewModel>
makeEditorViewModel(const CorvantaSdkVideoFile& input,
                    const std::optional<CorvantaSdkVideoFileDescriptor>& output,
                    CorvantaSdkVideoEditorViewModel::Completion completion) {
    return std::make_unique<CorvantaSdkVideoEditorViewModel>(
        std::make_shared<CorvantaSdkVideoEditorImplementation>(), VideosInformationGenerator(),
        std::make_shared<CorvantaCredentialsManagerImp>(), input, output, std::move(completion),
        &QtMediaPlayer::make);
}

EditorCover::EditorCover(QQmlEngine& engine, QQuickItem& covered,
                         std::unique_ptr<CorvantaSdkVideoEditorViewModel> viewModel,
                         OrientationManager& orientationManager)
    : covered_(&covered), viewModel_(std::move(viewModel)),
      view_(makeView(engine,
                     {{QStringLiteral("viewModel"), QVariant::fromValue(viewModel_.get())},
                      {QStringLiteral("orientationManager"), QVariant::fromValue(&orientationManager)}})) {
    view_->setZ(1);
    view_->setParentItem(&covered);
    fillCovered();
    connect(&covered, &QQuickItem::widthChanged, this, &EditorCover::fillCovered);
    connect(&covered, &QQuickItem::heightChanged, this, &EditorCover::fillCovered);
    connect(view_.get(), &EditorRoot::dismiss, this, &EditorCover::dismissRequested);
    slide_.setTargetObject(view_.get());
    slide_.setPropertyName("y");
    slide_.setDuration(slideMilliseconds);
    slide_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&slide_, &QPropertyAnimation::finished, this, [this] {
        if (dismissed_) {
            // May destroy the cover.
            const auto dismissed = dismissed_;
            dismissed();
        }
    });
}

EditorCover::~EditorCover() { slide_.stop(); }

void EditorCover::fillCovered() { view_->setSize(covered_->size()); }

void EditorCover::present() {
    view_->setY(view_->height());
    view_->forceActiveFocus();
    slideTo(0);
}

void EditorCover::dismiss(std::function<void()> dismissed) {
    if (!isDismissing()) {
        dismissed_ = std::move(dismissed);
        view_->setEnabled(false);
        slideTo(view_->height());
    }
}

void EditorCover::slideTo(double y) {
    slide_.stop();
    slide_.setEndValue(y);
    slide_.start();
}

} // namespace corvanta
