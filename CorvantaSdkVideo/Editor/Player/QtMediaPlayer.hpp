#pragma once

#include <CorvantaSdkVideo/Editor/Player/MediaPlayer.hpp>
#include <CorvantaSdkVideo/Editor/Player/PlaybackEngine.hpp>

#include <QPointer>
#include <QThread>

#include <memory>

namespace corvanta {

/// Plays with Qt Multimedia, on a thread of its own: nothing here waits for a decoder. Silent on a machine
/// without an audio device, where the volume is still kept. Seeks that come faster than frames are left out,
/// all but the last one.
class QtMediaPlayer : public MediaPlayer {
    Q_OBJECT

  public:
    /// Throws PlayerUnavailable. A file that can't be played fails later, and never ends.
    explicit QtMediaPlayer(const URL& url);
    ~QtMediaPlayer() override;

    static std::unique_ptr<MediaPlayer> make(const URL& url);

    void play() override;
    void pause() override;
    void seek(double seconds) override;
    bool isSeeking() const override { return seeksAsked_ != seeksDone_; }
    float volume() const override;
    void setVolume(float volume) override;
    void setVideoSink(QVideoSink* sink) override;

  private:
    void showFrame();

    std::unique_ptr<QThread> thread_;
    /// On that thread, and ended by it.
    PlaybackEngine* engine_;
    QPointer<QVideoSink> sink_;
    QVideoFrame frame_;
    float volume_ = 1;
    quint64 seeksAsked_ = 0;
    quint64 seeksDone_ = 0;
};

} // namespace corvanta
