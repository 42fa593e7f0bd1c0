#include <CorvantaSdkVideo/Editor/Player/QtVideoPlayer.hpp>

#include <CorvantaSdkVideo/Editor/Player/GStreamerElements.hpp>

#include <QAudioDevice>
#include <QMediaDevices>
#include <QUrl>
#include <QVideoSink>

#include <chrono>
#include <cmath>
#include <utility>

namespace corvanta {

namespace {

// A seek past the last frame, and one in a file without a picture, brings none.
constexpr std::chrono::milliseconds longestFrameWait{500};

} // namespace

QtVideoPlayer::QtVideoPlayer(const URL& url) {
    requireGStreamerElements();
    player_ = std::make_unique<QMediaPlayer>();
    frameWait_.setSingleShot(true);
    frameWait_.setInterval(longestFrameWait);
    connect(&frameWait_, &QTimer::timeout, this, &QtVideoPlayer::endSeek);
    connect(player_.get(), &QMediaPlayer::mediaStatusChanged, this, &QtVideoPlayer::mediaStatusChanged);
    connect(player_.get(), &QMediaPlayer::positionChanged, this, &QtVideoPlayer::positionChanged);
    // An audio output without a device makes the player hang.
    if (!QMediaDevices::audioOutputs().isEmpty()) {
        audioOutput_ = std::make_unique<QAudioOutput>();
        player_->setAudioOutput(audioOutput_.get());
    }
    player_->setSource(QUrl::fromLocalFile(QString::fromStdString(url.path())));
}

// Stopping, Qt's player tells of its last states, which nobody here is there to hear.
QtVideoPlayer::~QtVideoPlayer() {
    setVideoSink(nullptr);
    disconnect(player_.get(), nullptr, this, nullptr);
}

std::unique_ptr<VideoPlayer> QtVideoPlayer::make(const URL& url) {
    return std::make_unique<QtVideoPlayer>(url);
}

void QtVideoPlayer::setVideoSink(QVideoSink* sink) {
    if (QVideoSink* const older = player_->videoSink()) {
        disconnect(older, nullptr, this, nullptr);
    }
    player_->setVideoSink(sink);
    if (sink != nullptr) {
        connect(sink, &QVideoSink::videoFrameChanged, this, &QtVideoPlayer::endSeek);
    }
}

void QtVideoPlayer::play() {
    shouldPlay_ = true;
    if (isReady_) {
        startSeek();
        player_->play();
    }
}

void QtVideoPlayer::pause() {
    shouldPlay_ = false;
    // At the end it stands still already, and a pause there would go back to the start.
    if (isReady_ && player_->mediaStatus() != QMediaPlayer::EndOfMedia) {
        player_->pause();
    }
}

void QtVideoPlayer::seek(double seconds) {
    wantedPosition_ = std::llround(seconds * 1000);
    observedSecond_ = *wantedPosition_ / 1000;
    if (isReady_ && !frameWait_.isActive()) {
        startSeek();
    }
}

// A seek while another one still looks for its frame would block this thread until that has been decoded.
void QtVideoPlayer::startSeek() {
    if (wantedPosition_) {
        frameWait_.start();
        player_->setPosition(*std::exchange(wantedPosition_, std::nullopt));
    }
}

void QtVideoPlayer::endSeek() {
    frameWait_.stop();
    if (isReady_) {
        startSeek();
    }
}

float QtVideoPlayer::volume() const { return volume_; }

void QtVideoPlayer::setVolume(float volume) {
    volume_ = volume;
    if (audioOutput_) {
        audioOutput_->setVolume(volume);
    }
}

void QtVideoPlayer::mediaStatusChanged(QMediaPlayer::MediaStatus status) {
    if (status == QMediaPlayer::EndOfMedia) {
        Q_EMIT didPlayToEndTime();
    } else if (status == QMediaPlayer::LoadedMedia && !isLoaded_) {
        isLoaded_ = true;
        // Without a first pause no frame shows before the first play.
        player_->pause();
        // Only after this signal it can seek.
        QMetaObject::invokeMethod(this, &QtVideoPlayer::becomeReady, Qt::QueuedConnection);
    }
}

void QtVideoPlayer::becomeReady() {
    isReady_ = true;
    if (shouldPlay_) {
        play();
    } else {
        startSeek();
    }
}

void QtVideoPlayer::positionChanged(qint64 milliseconds) {
    const qint64 second = milliseconds / 1000;
    if (player_->playbackState() == QMediaPlayer::PlayingState && second != observedSecond_) {
        observedSecond_ = second;
        Q_EMIT timeObserved(static_cast<double>(milliseconds) / 1000);
    }
}

} // namespace corvanta
