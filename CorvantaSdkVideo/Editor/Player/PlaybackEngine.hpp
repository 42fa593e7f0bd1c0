#pragma once

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <QVideoFrame>
#include <QVideoSink>

#include <memory>
#include <mutex>
#include <optional>

namespace corvanta {

/// Qt's player, for a thread of its own: a seek blocks until the decoder has come to rest, and GStreamer
/// gives up a start that the thread of the frames doesn't answer in time. Everything but `takeFrame` is
/// called there.
class PlaybackEngine : public QObject {
    Q_OBJECT

  public:
    PlaybackEngine(const QUrl& source, bool hasAudioDevice);
    ~PlaybackEngine() override;

    /// Loads the file and shows its first frame; tries again by itself if none comes.
    void open();
    void play();
    void pause();
    /// One seek runs at a time; of those that come meanwhile only the last one is carried out.
    void seek(qint64 milliseconds, quint64 number);
    void setVolume(float volume);

    struct Shown {
        QVideoFrame frame;
        /// Seconds; absent unless it plays.
        std::optional<double> position = {};
    };
    /// The newest frame. Safe from any thread.
    Shown takeFrame();

  Q_SIGNALS:
    /// There is a frame to take. Not repeated until it has been taken.
    void frameWaiting();
    void timeObserved(double seconds);
    void didPlayToEndTime();
    /// No seek is left to be carried out; `number` is that of the last one.
    void sought(quint64 number);
    /// No frame has come, for all the attempts.
    void failed(const QString& reason);
    /// A frame has come after that.
    void recovered();

  private:
    void close();
    void recover();
    void endFirstFrameWait();
    void mediaStatusChanged(QMediaPlayer::MediaStatus status);
    void positionChanged(qint64 milliseconds);
    void becomeReady();
    void keepFrame(const QVideoFrame& frame);
    void startSeek();
    void endSeek();

    const QUrl source_;
    const bool hasAudioDevice_;
    std::unique_ptr<QVideoSink> sink_;
    std::unique_ptr<QAudioOutput> audioOutput_;
    std::unique_ptr<QMediaPlayer> player_;
    float volume_ = 1;
    bool isLoaded_ = false;
    bool isReady_ = false;
    bool shouldPlay_ = false;

    int attempts_ = 0;
    bool hasFrame_ = false;
    bool hasFailed_ = false;
    int recoveries_ = 0;
    /// Opened anew after an error, and not yet where it stood.
    bool isRestoring_ = false;
    /// Runs until the first frame, or until another attempt to get one.
    QTimer firstFrameWait_;

    /// Milliseconds, all three.
    qint64 lastPosition_ = 0;
    std::optional<qint64> wantedPosition_;
    std::optional<qint64> soughtPosition_;
    quint64 seekNumber_ = 0;
    /// Runs from a seek to its frame, at the longest.
    QTimer frameWait_;
    qint64 observedSecond_ = 0;

    std::mutex mutex_;
    Shown newest_;
};

} // namespace corvanta
