#include <CorvantaSdkVideo/Editor/Presentation/PresentVideoEditorModifier.hpp>

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>

#include <exception>
#include <utility>

namespace corvanta {

namespace {

QUrl qmlURL(const URL& url) {
    return url.isFileURL() ? QUrl::fromLocalFile(QString::fromStdString(url.path()))
                           : QUrl(QString::fromStdString(url.absoluteString()));
}

URL moduleURL(const QUrl& url) {
    return url.isLocalFile() ? URL::fromFilePath(url.toLocalFile().toStdString())
                             : URL::parse(url.toString().toStdString()).value_or(URL());
}

} // namespace

EditorResultInQml::EditorResultInQml(const CorvantaSdkVideoEditorResult& result) {
    if (result.editedVideoURL) {
        editedVideoURL_ = qmlURL(*result.editedVideoURL);
    }
}

PresentVideoEditorModifier::~PresentVideoEditorModifier() = default;

void PresentVideoEditorModifier::setIsPresented(bool isPresented) {
    if (isPresented != isPresented_) {
        isPresented_ = isPresented;
        followLater();
        Q_EMIT isPresentedChanged();
    }
}

void PresentVideoEditorModifier::componentComplete() {
    QQuickItem::componentComplete();
    followLater();
}

void PresentVideoEditorModifier::itemChange(ItemChange change, const ItemChangeData& value) {
    QQuickItem::itemChange(change, value);
    if (change == ItemSceneChange) {
        followLater();
    }
}

void PresentVideoEditorModifier::followLater() {
    QMetaObject::invokeMethod(this, &PresentVideoEditorModifier::follow, Qt::QueuedConnection);
}

void PresentVideoEditorModifier::follow() {
    if (cover_ && (window() == nullptr || !cover_->covers(*window()->contentItem()))) {
        cover_.reset();
    }
    if (!isComponentComplete() || window() == nullptr) {
        return;
    }
    if (isPresented_ && (!cover_ || cover_->isDismissing())) {
        cover();
    } else if (!isPresented_ && cover_) {
        cover_->dismiss([this] { cover_.release()->deleteLater(); });
    }
}

void PresentVideoEditorModifier::cover() {
    cover_.reset();
    const auto completion = [this](const CorvantaSdkVideoEditorResult& result) {
        Q_EMIT completed(EditorResultInQml(result));
    };
    try {
        cover_ = std::make_unique<EditorCover>(
            *qmlContext(this)->engine(), *window()->contentItem(),
            makeEditorViewModel(CorvantaSdkVideoFile(moduleURL(input_)), std::nullopt, completion));
    } catch (const std::exception& error) {
        Q_EMIT failed(QString::fromUtf8(error.what()));
        setIsPresented(false);
        return;
    }
    connect(cover_.get(), &EditorCover::dismissRequested, this, [this] { setIsPresented(false); });
    cover_->present();
}

} // namespace corvanta
