#pragma once

#include <platform/URL.hpp>

#include <QObject>

#include <functional>
#include <memory>

class QVideoSink;

namespace corvanta {

/// What the editor needs of a player for one file. Paused at first, with a volume of 1. Used on the Qt
/// thread.
class MediaPlayer : public QObject {
    Q_OBJECT

  public:
    virtual void play() = 0;
    virtual void pause() = 0;
    /// `seconds` is finite and not negative.
    virtual void seek(double seconds) = 0;
    /// Whether the frame of the last seek is still to come.
    virtual bool isSeeking() const { return false; }

    /// 0 to 1.
    virtual float volume() const = 0;
    virtual void setVolume(float volume) = 0;

    /// Where the frames go; it must outlive the player or be taken away with a null pointer.
    virtual void setVideoSink(QVideoSink* sink) = 0;

  Q_SIGNALS:
    /// About once in each second of the file while it plays.
    void timeObserved(double seconds);
    /// Where it stands: with each seek, at once, and with each frame while it plays. A player that doesn't
    /// tell is stopped at a range's end by `timeObserved` alone.
    void positionChanged(double seconds);
    void didPlayToEndTime();
    /// No frame can be shown; the reason may be empty.
    void failed(const QString& reason);
    /// After that, one could be.
    void recovered();
};

/// Makes the player for a file.
using MakeMediaPlayer = std::function<std::unique_ptr<MediaPlayer>(const URL&)>;

} // namespace corvanta
