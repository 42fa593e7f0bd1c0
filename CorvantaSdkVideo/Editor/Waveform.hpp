#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <QObject>
#include <QUrl>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// A picture of the clip's sound, made when it is first asked for. Lives as long as its view model at most,
/// on the Qt thread.
class Waveform : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The screen makes it")
    Q_PROPERTY(QUrl picture READ picture NOTIFY pictureChanged)

  public:
    explicit Waveform(CorvantaSdkVideoEditorViewModel& viewModel) : viewModel_(viewModel) {}

    /// Starts to make it, once, if the clip has sound.
    Q_INVOKABLE void make();

    /// White on nothing, over the whole clip; empty as long as there is none.
    QUrl picture() const { return picture_; }

  Q_SIGNALS:
    void pictureChanged();

  private:
    static Task<> draw(QPointer<Waveform> waveform, std::shared_ptr<CorvantaSdkVideoEditor> editor,
                       URL video);

    CorvantaSdkVideoEditorViewModel& viewModel_;
    bool isMade_ = false;
    QUrl picture_;
};

} // namespace corvanta
