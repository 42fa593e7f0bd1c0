#include <CorvantaSdkVideo/Editor/Playhead.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvanta {

Playhead::Playhead(CorvantaSdkVideoEditorViewModel& viewModel) : viewModel_(viewModel) {
    connect(&viewModel.videoPlayer(), &MediaPlayer::positionChanged, this, [this](double seconds) {
        seconds_ = seconds;
        Q_EMIT secondsChanged();
    });
    using Model = CorvantaSdkVideoEditorViewModel;
    connect(&viewModel, &Model::stopAtChanged, this, &Playhead::followEnd);
    // Played from where the end shows, it would stop at once.
    connect(&viewModel, &Model::isPlayingChanged, this, [this] {
        if (viewModel_.isPlaying() && showsEnd_) {
            endMovingEdge();
        }
    });
}

double Playhead::lastPicture() const {
    return std::max(viewModel_.trimmerStart(), viewModel_.stopAt() - viewModel_.frameDuration());
}

void Playhead::seek(double seconds) {
    if (viewModel_.isReady()) {
        viewModel_.seekTo(std::clamp(seconds, viewModel_.trimmerStart(), lastPicture()));
    }
}

void Playhead::seekToStart() { seek(viewModel_.trimmerStart()); }

void Playhead::seekToEnd() { seek(lastPicture()); }

void Playhead::moveBy(double distance) {
    const double least = viewModel_.frameDuration();
    const double step = std::max(least, std::abs(viewModel_.secondsAt(distance)));
    seek(seconds_ + std::copysign(step, distance));
}

void Playhead::beginMovingEdge() {
    if (!std::exchange(isMovingEdge_, true)) {
        secondsBefore_ = seconds_;
        startBefore_ = viewModel_.trimmerStart();
        showsEnd_ = false;
    }
}

// A range that is moved as a whole has had its start moved just before.
void Playhead::followEnd() {
    const bool movesAlone = viewModel_.trimmerStart() == startBefore_;
    startBefore_ = viewModel_.trimmerStart();
    if (!isMovingEdge_ || !movesAlone || !viewModel_.isReady()) {
        return;
    }
    if (!std::exchange(showsEnd_, true)) {
        wasPlaying_ = viewModel_.isPlaying();
        if (wasPlaying_) {
            viewModel_.handleAction();
        }
    }
    viewModel_.seekTo(lastPicture());
}

void Playhead::endMovingEdge() {
    isMovingEdge_ = false;
    if (std::exchange(showsEnd_, false)) {
        seek(secondsBefore_);
        if (std::exchange(wasPlaying_, false) && !viewModel_.isPlaying()) {
            viewModel_.handleAction();
        }
    }
}

} // namespace corvanta
