#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/Gestures.hpp>

#include <algorithm>
#include <cmath>

namespace corvanta {

void CorvantaSdkVideoEditorViewModel::handleAction() {
    if (isPlaying()) {
        pause();
    } else {
        play();
    }
}

void CorvantaSdkVideoEditorViewModel::pause() {
    isPlaying_ = false;
    videoPlayer_->pause();
}

void CorvantaSdkVideoEditorViewModel::play() {
    // The range may have been moved since, to before where the player stands.
    const bool isBehind = isReady() && playerPosition_ >= stopAt() - frameDuration_ / 2;
    if (didFinishPlaying() || isBehind) {
        seek(secondsAt(trimmerXOffset()));
    }
    isPlaying_ = true;
    didFinishPlaying_ = false;
    videoPlayer_->play();
}

void CorvantaSdkVideoEditorViewModel::followPlayer(double seconds) {
    playerPosition_ = seconds;
    if (isPlaying() && isReady() && seconds >= stopAt()) {
        onDidFinishPlaying();
    }
}

void CorvantaSdkVideoEditorViewModel::seekTo(double seconds) {
    didFinishPlaying_ = false;
    videoPlayer_->seek(std::clamp(seconds, 0.0, videoDuration()));
}

// On whole seconds: that is how coarse the picture shown while trimming is meant to be.
void CorvantaSdkVideoEditorViewModel::seek(double seconds) {
    if (std::isfinite(seconds)) {
        videoPlayer_->seek(std::max(0.0, std::trunc(seconds)));
    }
}

void CorvantaSdkVideoEditorViewModel::onDidFinishPlaying() {
    isPlaying_ = false;
    didFinishPlaying_ = true;
    videoPlayer_->pause();
}

void CorvantaSdkVideoEditorViewModel::changeVolume(const QPointF& location, const QSizeF& translation,
                                                   const QRectF& bar) {
    constexpr double fullBelow = 4;
    constexpr double muteAbove = 180;
    if (!holds(bar, location)) {
        return;
    }
    const double y = location.y();
    if (y <= fullBelow && translation.height() < 0) {
        setVolumeHeight(initialVolumeHeight);
    } else if (y >= muteAbove && translation.height() > 0) {
        setVolumeHeight(0);
    } else {
        setVolumeHeight(initialVolumeHeight - y);
    }
}

void CorvantaSdkVideoEditorViewModel::muteVideo() {
    if (volumeHeight() > 0) {
        previousVolumeHeight_ = volumeHeight();
        setVolumeHeight(0);
    } else if (previousVolumeHeight_ > 0) {
        setVolumeHeight(previousVolumeHeight_);
    } else {
        setVolumeHeight(initialVolumeHeight);
    }
}

void CorvantaSdkVideoEditorViewModel::setVolumeHeight(double height) {
    volumeHeight_ = height;
    videoPlayer_->setVolume(static_cast<float>(height / initialVolumeHeight));
    const bool muted = height == 0;
    soundIcon_ = muted ? QStringLiteral("speaker.slash") : QStringLiteral("speaker.wave.3");
    soundIconColor_ = QColor(muted ? Qt::black : Qt::white);
    soundBackgroundColor_ = muted ? CorvantaColor::ambar : CorvantaColor::gray;
}

void CorvantaSdkVideoEditorViewModel::rotateRight() {
    videoRotation_ = videoRotation() == 270 ? 0 : videoRotation() + 90;
    checkVideoOrientation();
}

void CorvantaSdkVideoEditorViewModel::rotateLeft() {
    videoRotation_ = videoRotation() == -270 ? 0 : videoRotation() - 90;
    checkVideoOrientation();
}

void CorvantaSdkVideoEditorViewModel::checkVideoOrientation() {
    videoIsInPortraitMode_ = videoRotation() % 180 == 0;
}

} // namespace corvanta
