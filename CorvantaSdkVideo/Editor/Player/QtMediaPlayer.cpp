#include <CorvantaSdkVideo/Editor/Player/QtMediaPlayer.hpp>

#include <CorvantaSdkVideo/Editor/Player/GStreamerElements.hpp>

#include <QAudioDevice>
#include <QCoreApplication>
#include <QMediaDevices>

#include <cmath>
#include <utility>

namespace corvanta {

namespace {

/// Lasts no longer than its object, and the engine no longer than the thread.
class PlaybackThread : public QThread {
  public:
    explicit PlaybackThread(std::unique_ptr<PlaybackEngine> engine) : engine_(std::move(engine)) {
        engine_->moveToThread(this);
    }
    PlaybackThread(const PlaybackThread&) = delete;
    PlaybackThread& operator=(const PlaybackThread&) = delete;
    ~PlaybackThread() override {
        quit();
        wait();
    }

  protected:
    // Not by an event: an application that ends delivers none any more.
    void run() override {
        exec();
        engine_.reset();
    }

  private:
    std::unique_ptr<PlaybackEngine> engine_;
};

QUrl qtURL(const URL& url) { return QUrl::fromLocalFile(QString::fromStdString(url.path())); }

} // namespace

QtMediaPlayer::QtMediaPlayer(const URL& url) {
    requireGStreamerElements();
    // Asked here, since this makes what Qt keeps for all players, on this thread that outlives theirs.
    const bool hasAudioDevice = !QMediaDevices::audioOutputs().isEmpty();
    auto engine = std::make_unique<PlaybackEngine>(qtURL(url), hasAudioDevice);
    engine_ = engine.get();
    thread_ = std::make_unique<PlaybackThread>(std::move(engine));
    connect(engine_, &PlaybackEngine::frameWaiting, this, &QtMediaPlayer::showFrame);
    connect(engine_, &PlaybackEngine::timeObserved, this, &MediaPlayer::timeObserved);
    connect(engine_, &PlaybackEngine::didPlayToEndTime, this, &MediaPlayer::didPlayToEndTime);
    connect(engine_, &PlaybackEngine::failed, this, &MediaPlayer::failed);
    connect(engine_, &PlaybackEngine::recovered, this, &MediaPlayer::recovered);
    connect(engine_, &PlaybackEngine::sought, this, [this](quint64 number) { seeksDone_ = number; });
    thread_->start();
    QMetaObject::invokeMethod(engine_, &PlaybackEngine::open);
}

// A player that comes to rest takes its time, and nobody has to wait for it but an application that ends.
QtMediaPlayer::~QtMediaPlayer() {
    disconnect(engine_, nullptr, this, nullptr);
    QThread* const thread = thread_.release();
    thread->setParent(QCoreApplication::instance());
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->quit();
}

std::unique_ptr<MediaPlayer> QtMediaPlayer::make(const URL& url) {
    return std::make_unique<QtMediaPlayer>(url);
}

void QtMediaPlayer::setVideoSink(QVideoSink* sink) {
    sink_ = sink;
    if (sink_ && frame_.isValid()) {
        sink_->setVideoFrame(frame_);
    }
}

void QtMediaPlayer::showFrame() {
    const PlaybackEngine::Shown shown = engine_->takeFrame();
    frame_ = shown.frame;
    if (sink_) {
        sink_->setVideoFrame(frame_);
    }
    if (shown.position && !isSeeking()) {
        Q_EMIT positionChanged(*shown.position);
    }
}

void QtMediaPlayer::play() { QMetaObject::invokeMethod(engine_, &PlaybackEngine::play); }

void QtMediaPlayer::pause() { QMetaObject::invokeMethod(engine_, &PlaybackEngine::pause); }

void QtMediaPlayer::seek(double seconds) {
    QMetaObject::invokeMethod(engine_, [engine = engine_, milliseconds = std::llround(seconds * 1000),
                                        number = ++seeksAsked_] { engine->seek(milliseconds, number); });
    Q_EMIT positionChanged(seconds);
}

float QtMediaPlayer::volume() const { return volume_; }

void QtMediaPlayer::setVolume(float volume) {
    volume_ = volume;
    QMetaObject::invokeMethod(engine_, [engine = engine_, volume] { engine->setVolume(volume); });
}

} // namespace corvanta
