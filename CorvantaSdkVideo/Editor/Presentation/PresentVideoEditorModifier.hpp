#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEditorResult.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/EditorCover.hpp>

#include <QQuickItem>
#include <QUrl>
#include <QVariant>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// A result as QML sees it: `editedVideoURL` is a URL, or null if the user has left without an edit.
class EditorResultInQml {
    Q_GADGET
    Q_PROPERTY(QVariant editedVideoURL READ editedVideoURL CONSTANT)

  public:
    EditorResultInQml() = default;
    explicit EditorResultInQml(const CorvantaSdkVideoEditorResult& result);

    QVariant editedVideoURL() const { return editedVideoURL_; }

  private:
    QVariant editedVideoURL_ = QVariant::fromValue(nullptr);
};

/// Presents the editor over the whole window that this item stands in, as long as `isPresented` is true:
///
///     PresentVideoEditorModifier {
///         isPresented: page.isEditing
///         input: page.video
///         onCompleted: result => { page.isEditing = false; page.show(result.editedVideoURL) }
///     }
///
/// When the editor has ended, `completed` comes first, and then `isPresented` becomes false; a binding on it
/// stays, so the host sets what it is bound to back. The edited file is a new one in the documents directory.
/// `failed` comes instead if the editor can't be shown.
class PresentVideoEditorModifier : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isPresented READ isPresented WRITE setIsPresented NOTIFY isPresentedChanged)
    Q_PROPERTY(QUrl input MEMBER input_ NOTIFY inputChanged)

  public:
    ~PresentVideoEditorModifier() override;

    bool isPresented() const { return isPresented_; }
    void setIsPresented(bool isPresented);

  Q_SIGNALS:
    void isPresentedChanged();
    void inputChanged();
    void completed(const corvanta::EditorResultInQml& result);
    void failed(const QString& reason);

  protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

  private:
    /// Soon, when all bindings have their new values and whoever asked for it has returned.
    void followLater();
    void follow();
    void cover();

    bool isPresented_ = false;
    QUrl input_;
    std::unique_ptr<EditorCover> cover_;
};

} // namespace corvanta
