#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// A part of a long clip, as wide as the strip, around an edge that is being moved. Lives as long as its view
/// model at most, on the Qt thread. Times are seconds of the clip, positions shares of the strip's width.
class StripZoom : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The screen makes it")
    Q_PROPERTY(bool isPossible READ isPossible NOTIFY changed)
    Q_PROPERTY(bool isActive READ isActive NOTIFY changed)
    Q_PROPERTY(bool onStart READ onStart NOTIFY changed)
    Q_PROPERTY(double from READ from NOTIFY changed)
    Q_PROPERTY(double to READ to NOTIFY changed)
    Q_PROPERTY(QStringList pictures READ pictures NOTIFY picturesChanged)

  public:
    explicit StripZoom(CorvantaSdkVideoEditorViewModel& viewModel);

    /// Zooms in such that the start, or the end, of the range lies at `position`, as far as the clip's ends
    /// allow.
    Q_INVOKABLE void begin(bool onStart, double position);
    /// Moves that edge to the time at a position.
    Q_INVOKABLE void moveTo(double position);
    Q_INVOKABLE void end();

    /// The clip is long enough to gain by it.
    bool isPossible() const;
    bool isActive() const { return isActive_; }
    /// It is the range's start that is moved, not its end.
    bool onStart() const { return onStart_; }
    double from() const { return from_; }
    double to() const { return to_; }
    /// "data" URLs of the part's thumbnails; those that are still to come are empty.
    QStringList pictures() const { return pictures_; }

  Q_SIGNALS:
    void changed();
    void picturesChanged();

  private:
    static Task<> makePictures(QPointer<StripZoom> zoom, std::shared_ptr<CorvantaSdkVideoEditor> editor,
                               URL video, int round);

    CorvantaSdkVideoEditorViewModel& viewModel_;
    bool isActive_ = false;
    bool onStart_ = true;
    double from_ = 0;
    double to_ = 0;
    QStringList pictures_;
    /// Counts the zooms.
    int round_ = 0;
};

} // namespace corvanta
