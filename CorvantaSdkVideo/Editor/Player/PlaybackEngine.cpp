#include <CorvantaSdkVideo/Editor/Player/PlaybackEngine.hpp>

#include <platform/Errors.hpp>
#include <platform/MediaOpening.hpp>

#include <chrono>
#include <optional>
#include <utility>

namespace corvanta {

namespace {

// A seek past the last frame, and one in a file without a picture, brings none.
constexpr std::chrono::milliseconds longestFrameWait{500};

// GStreamer gives a start up after one second; each further attempt leaves a busy machine more time.
constexpr std::chrono::seconds firstFrameWait{2};
constexpr std::chrono::milliseconds waitAfterError{250};
constexpr int attempts = 4;
constexpr int mostRecoveries = 20;

// A frame is shown for a while before a position, and clocks of files start at other times than 0.
bool belongsTo(qint64 position, const QVideoFrame& frame) {
    const qint64 time = frame.startTime() / 1000;
    return frame.startTime() < 0 || (time > position - 1000 && time < position + 2000);
}

// Why the module itself doesn't open a file: the player would, a playlist that names other files too.
std::optional<QString> refusalOf(const QUrl& source) {
    try {
        const OpenMedia allowed(source.toLocalFile().toStdString());
    } catch (const PlatformError& error) {
        return QString::fromStdString(error.details());
    }
    return std::nullopt;
}

} // namespace

PlaybackEngine::PlaybackEngine(const QUrl& source, bool hasAudioDevice)
    : source_(source), hasAudioDevice_(hasAudioDevice), firstFrameWait_(this), frameWait_(this) {
    firstFrameWait_.setSingleShot(true);
    connect(&firstFrameWait_, &QTimer::timeout, this, &PlaybackEngine::endFirstFrameWait);
    frameWait_.setSingleShot(true);
    frameWait_.setInterval(longestFrameWait);
    connect(&frameWait_, &QTimer::timeout, this, &PlaybackEngine::endSeek);
}

PlaybackEngine::~PlaybackEngine() { close(); }

// Stopping, Qt's player tells of its last states, which nobody here is there to hear.
void PlaybackEngine::close() {
    if (player_) {
        disconnect(player_.get(), nullptr, this, nullptr);
        disconnect(sink_.get(), nullptr, this, nullptr);
        player_.reset();
    }
    isLoaded_ = false;
    isReady_ = false;
}

void PlaybackEngine::open() {
    close();
    if (const auto refusal = refusalOf(source_)) {
        hasFailed_ = true;
        Q_EMIT failed(*refusal);
        return;
    }
    player_ = std::make_unique<QMediaPlayer>();
    connect(player_.get(), &QMediaPlayer::mediaStatusChanged, this, &PlaybackEngine::mediaStatusChanged);
    connect(player_.get(), &QMediaPlayer::positionChanged, this, &PlaybackEngine::positionChanged);
    connect(player_.get(), &QMediaPlayer::errorOccurred, this, [this] {
        if (!hasFrame_ && !hasFailed_) {
            firstFrameWait_.start(waitAfterError);
        } else if (hasFrame_ && recoveries_ < mostRecoveries) {
            // Not from within the player that is given up.
            hasFrame_ = false;
            QMetaObject::invokeMethod(this, &PlaybackEngine::recover, Qt::QueuedConnection);
        }
    });
    // An audio output without a device makes the player hang.
    if (hasAudioDevice_) {
        audioOutput_ = std::make_unique<QAudioOutput>();
        audioOutput_->setVolume(volume_);
        player_->setAudioOutput(audioOutput_.get());
    }
    sink_ = std::make_unique<QVideoSink>();
    connect(sink_.get(), &QVideoSink::videoFrameChanged, this, &PlaybackEngine::keepFrame);
    player_->setVideoSink(sink_.get());
    firstFrameWait_.start(firstFrameWait * (1 << attempts_));
    ++attempts_;
    player_->setSource(source_);
}

// Seeks close to a clip's end may break the pipeline: it shows what is sought after that, but doesn't play.
void PlaybackEngine::recover() {
    ++recoveries_;
    frameWait_.stop();
    if (!wantedPosition_) {
        wantedPosition_ = soughtPosition_.value_or(lastPosition_);
    }
    soughtPosition_.reset();
    isRestoring_ = true;
    attempts_ = 0;
    open();
}

void PlaybackEngine::endFirstFrameWait() {
    // There is none to wait for in a file of sound alone.
    if (isLoaded_ && !player_->hasVideo()) {
        return;
    }
    if (attempts_ < attempts) {
        open();
    } else {
        hasFailed_ = true;
        Q_EMIT failed(player_->errorString());
    }
}

void PlaybackEngine::play() {
    shouldPlay_ = true;
    if (isReady_) {
        startSeek();
        player_->play();
    }
}

void PlaybackEngine::pause() {
    shouldPlay_ = false;
    // At the end it stands still already, and a pause there would go back to the start.
    if (isReady_ && player_->mediaStatus() != QMediaPlayer::EndOfMedia) {
        player_->pause();
    }
}

void PlaybackEngine::seek(qint64 milliseconds, quint64 number) {
    wantedPosition_ = milliseconds;
    seekNumber_ = number;
    observedSecond_ = milliseconds / 1000;
    if (isReady_ && !soughtPosition_) {
        startSeek();
    }
}

void PlaybackEngine::startSeek() {
    if (wantedPosition_) {
        soughtPosition_ = std::exchange(wantedPosition_, std::nullopt);
        lastPosition_ = *soughtPosition_;
        frameWait_.start();
        player_->setPosition(*soughtPosition_);
    }
}

void PlaybackEngine::endSeek() {
    frameWait_.stop();
    soughtPosition_.reset();
    isRestoring_ = false;
    if (isReady_) {
        startSeek();
    }
    if (!soughtPosition_ && !wantedPosition_) {
        Q_EMIT sought(seekNumber_);
    }
}

void PlaybackEngine::setVolume(float volume) {
    volume_ = volume;
    if (audioOutput_) {
        audioOutput_->setVolume(volume);
    }
}

void PlaybackEngine::keepFrame(const QVideoFrame& frame) {
    // An empty one comes when the player stops.
    if (!frame.isValid()) {
        return;
    }
    hasFrame_ = true;
    firstFrameWait_.stop();
    // The clip's first one would flash up.
    if (isRestoring_ && !(soughtPosition_ && belongsTo(*soughtPosition_, frame))) {
        return;
    }
    Shown shown{frame};
    if (player_->playbackState() == QMediaPlayer::PlayingState && !soughtPosition_) {
        lastPosition_ = player_->position();
        shown.position = static_cast<double>(lastPosition_) / 1000;
    }
    bool isTaken = false;
    {
        const std::lock_guard lock(mutex_);
        isTaken = !newest_.frame.isValid();
        newest_ = shown;
    }
    if (isTaken) {
        Q_EMIT frameWaiting();
    }
    if (std::exchange(hasFailed_, false)) {
        Q_EMIT recovered();
    }
    if (soughtPosition_ && belongsTo(*soughtPosition_, frame)) {
        endSeek();
    }
}

PlaybackEngine::Shown PlaybackEngine::takeFrame() {
    const std::lock_guard lock(mutex_);
    return std::exchange(newest_, {});
}

void PlaybackEngine::mediaStatusChanged(QMediaPlayer::MediaStatus status) {
    if (status == QMediaPlayer::EndOfMedia) {
        Q_EMIT didPlayToEndTime();
    } else if (status == QMediaPlayer::LoadedMedia && !isLoaded_) {
        isLoaded_ = true;
        // Without a first pause no frame shows before the first play.
        player_->pause();
        // Only after this signal it can seek.
        QMetaObject::invokeMethod(this, &PlaybackEngine::becomeReady, Qt::QueuedConnection);
    }
}

void PlaybackEngine::becomeReady() {
    isReady_ = isLoaded_;
    if (isReady_ && shouldPlay_) {
        play();
    } else if (isReady_) {
        startSeek();
    }
}

void PlaybackEngine::positionChanged(qint64 milliseconds) {
    const qint64 second = milliseconds / 1000;
    if (player_->playbackState() == QMediaPlayer::PlayingState && second != observedSecond_) {
        observedSecond_ = second;
        Q_EMIT timeObserved(static_cast<double>(milliseconds) / 1000);
    }
}

} // namespace corvanta
