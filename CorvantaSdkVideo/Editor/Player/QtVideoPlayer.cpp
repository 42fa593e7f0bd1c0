#include <CorvantaSdkVideo/Editor/Player/QtVideoPlayer.hpp>

#include <CorvantaSdkVideo/Editor/Player/GStreamerElements.hpp>

#include <QAudioDevice>
#include <QMediaDevices>
#include <QUrl>

#include <cmath>
#include <utility>

namespace corvanta {

QtVideoPlayer::QtVideoPlayer(const URL& url) {
    requireGStreamerElements();
    connect(&player_, &QMediaPlayer::mediaStatusChanged, this, &QtVideoPlayer::mediaStatusChanged);
    connect(&player_, &QMediaPlayer::positionChanged, this, &QtVideoPlayer::positionChanged);
    // An audio output without a device makes the player hang.
    if (!QMediaDevices::audioOutputs().isEmpty()) {
        audioOutput_ = std::make_unique<QAudioOutput>();
        player_.setAudioOutput(audioOutput_.get());
    }
    player_.setSource(QUrl::fromLocalFile(QString::fromStdString(url.path())));
}

std::unique_ptr<VideoPlayer> QtVideoPlayer::make(const URL& url) {
    return std::make_unique<QtVideoPlayer>(url);
}

void QtVideoPlayer::setVideoSink(QVideoSink* sink) { player_.setVideoSink(sink); }

void QtVideoPlayer::play() {
    shouldPlay_ = true;
    if (isLoaded_) {
        player_.play();
    }
}

void QtVideoPlayer::pause() {
    shouldPlay_ = false;
    // At the end it stands still already, and a pause there would go back to the start.
    if (isLoaded_ && player_.mediaStatus() != QMediaPlayer::EndOfMedia) {
        player_.pause();
    }
}

void QtVideoPlayer::seek(double seconds) {
    const auto milliseconds = static_cast<qint64>(std::llround(seconds * 1000));
    observedSecond_ = milliseconds / 1000;
    if (isLoaded_) {
        player_.setPosition(milliseconds);
    } else {
        pendingSeek_ = milliseconds;
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
    }
    if (isLoaded_ || (status != QMediaPlayer::LoadedMedia && status != QMediaPlayer::BufferedMedia)) {
        return;
    }
    isLoaded_ = true;
    // Without a first pause no frame shows before the first play.
    player_.pause();
    if (pendingSeek_) {
        player_.setPosition(*std::exchange(pendingSeek_, std::nullopt));
    }
    if (shouldPlay_) {
        player_.play();
    }
}

void QtVideoPlayer::positionChanged(qint64 milliseconds) {
    const qint64 second = milliseconds / 1000;
    if (player_.playbackState() == QMediaPlayer::PlayingState && second != observedSecond_) {
        observedSecond_ = second;
        Q_EMIT timeObserved(static_cast<double>(milliseconds) / 1000);
    }
}

} // namespace corvanta
