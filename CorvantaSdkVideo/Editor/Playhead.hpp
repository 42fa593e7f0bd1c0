#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <QObject>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// Where the player stands within the kept range, and what moves it there beside the trimmer's edges. Lives
/// as long as its view model at most, on the Qt thread. Times are seconds of the clip.
class Playhead : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The screen makes it")
    Q_PROPERTY(double seconds READ seconds NOTIFY secondsChanged)

  public:
    explicit Playhead(CorvantaSdkVideoEditorViewModel& viewModel);

    double seconds() const { return seconds_; }

    /// To a time of the range, or to the nearer one of its ends: the last picture stands one frame before it.
    Q_INVOKABLE void seek(double seconds);
    Q_INVOKABLE void seekToStart();
    Q_INVOKABLE void seekToEnd();
    /// By a distance on the strip, but by one frame at least.
    Q_INVOKABLE void moveBy(double distance);

    /// Between these the picture of the range's end shows whenever that end alone is moved. Afterwards the
    /// player stands where it stood, and plays on if it played.
    Q_INVOKABLE void beginMovingEdge();
    Q_INVOKABLE void endMovingEdge();

  Q_SIGNALS:
    void secondsChanged();

  private:
    void followEnd();
    double lastPicture() const;

    CorvantaSdkVideoEditorViewModel& viewModel_;
    double seconds_ = 0;
    bool isMovingEdge_ = false;
    bool showsEnd_ = false;
    bool wasPlaying_ = false;
    double secondsBefore_ = 0;
    double startBefore_ = 0;
};

} // namespace corvanta
