#pragma once

#include <CorvantaSdkVideo/Editor/Player/VideoPlayer.hpp>

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QTimer>

#include <memory>
#include <optional>

namespace corvanta {

/// Plays with Qt Multimedia. Silent on a machine without an audio device, where the volume is still kept.
/// Seeks that come faster than frames are left out, all but the last one.
class QtVideoPlayer : public VideoPlayer {
    Q_OBJECT

  public:
    /// Throws PlayerUnavailable. A file that can't be played shows nothing and never ends.
    explicit QtVideoPlayer(const URL& url);
    ~QtVideoPlayer() override;

    static std::unique_ptr<VideoPlayer> make(const URL& url);

    void play() override;
    void pause() override;
    void seek(double seconds) override;
    float volume() const override;
    void setVolume(float volume) override;
    void setVideoSink(QVideoSink* sink) override;

  private:
    void mediaStatusChanged(QMediaPlayer::MediaStatus status);
    void positionChanged(qint64 milliseconds);
    void becomeReady();
    void startSeek();
    void endSeek();

    std::unique_ptr<QAudioOutput> audioOutput_;
    std::unique_ptr<QMediaPlayer> player_;
    float volume_ = 1;
    bool isLoaded_ = false;
    bool isReady_ = false;
    bool shouldPlay_ = false;
    /// Milliseconds.
    std::optional<qint64> wantedPosition_;
    /// Runs from a seek to its frame, at the longest.
    QTimer frameWait_;
    qint64 observedSecond_ = 0;
};

} // namespace corvanta
