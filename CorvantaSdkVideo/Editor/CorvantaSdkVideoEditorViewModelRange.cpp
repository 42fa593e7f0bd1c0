#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/TrimmerGeometry.hpp>

#include <algorithm>

namespace corvanta {

void CorvantaSdkVideoEditorViewModel::resizeTrimmer(const QSizeF& forScreenSize) {
    screenWidth_ = forScreenSize.width();
    screenHeight_ = forScreenSize.height();
    setupInitialUI();
    if (isReady() && isTrimmerRangeVisible()) {
        const double pointsPerSecond = trimmerInitialWidth() / videoDuration_;
        placeEdges(trimmerStart() * pointsPerSecond + handleInset, stopAt() * pointsPerSecond - handleInset);
    }
}

void CorvantaSdkVideoEditorViewModel::placeEdges(double left, double right) {
    setLeftEdgePosition(left);
    setRightEdgePosition(right);
    leftSpaceSize_ = calculateLeftSpaceSize(left);
    setRightSpaceSize(calculateRightSpaceSize(right));
    trimmerSize_ = QSizeF(trimmerRightEdgePosition_ - trimmerXOffset(), trimmerHeight);
}

void CorvantaSdkVideoEditorViewModel::moveStartBy(double distance) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    // On a smaller screen the edges may stand closer than they can be brought here.
    const double furthest = std::max(leftEdgePosition_, rightEdgePosition_ - minimumEdgeDistance);
    placeEdges(std::max(handleInset, std::min(leftEdgePosition_ + distance, furthest)), rightEdgePosition_);
    setTrimmerStart(secondsAt(trimmerXOffset()));
    videoPlayer_->seek(trimmerStart());
}

void CorvantaSdkVideoEditorViewModel::moveEndBy(double distance) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    const double nearest = std::min(rightEdgePosition_, leftEdgePosition_ + minimumEdgeDistance);
    const double last = trimmerInitialWidth() - handleInset;
    placeEdges(leftEdgePosition_, std::min(last, std::max(rightEdgePosition_ + distance, nearest)));
    setStopAt(std::min(videoDuration_, secondsAt(trimmerRightEdgePosition_)));
}

void CorvantaSdkVideoEditorViewModel::moveRangeBy(double distance) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    const double toTheRight = trimmerInitialWidth() - handleInset - rightEdgePosition_;
    const double possible = std::max(handleInset - leftEdgePosition_, std::min(distance, toTheRight));
    placeEdges(leftEdgePosition_ + possible, rightEdgePosition_ + possible);
    setTrimmerStart(std::max(0.0, secondsAt(trimmerXOffset())));
    setStopAt(std::min(videoDuration_, secondsAt(trimmerRightEdgePosition_)));
    videoPlayer_->seek(trimmerStart());
}

void CorvantaSdkVideoEditorViewModel::keep(double start, double end) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    const double pointsPerSecond = trimmerInitialWidth() / videoDuration_;
    const double least = (minimumEdgeDistance + 2 * handleInset) / pointsPerSecond;
    // The edge that stays holds the one that moves.
    const bool movesStart = start != trimmerStart();
    const double first = std::clamp(start, 0.0, std::max(0.0, videoDuration_ - least));
    const double last = std::clamp(end, std::min(least, videoDuration_), videoDuration_);
    const double from = movesStart ? std::min(first, std::max(0.0, last - least)) : first;
    const double to = movesStart ? last : std::max(last, std::min(videoDuration_, first + least));
    placeEdges(from * pointsPerSecond + handleInset, to * pointsPerSecond - handleInset);
    setTrimmerStart(from);
    setStopAt(to);
}

void CorvantaSdkVideoEditorViewModel::resetRange() {
    if (isReady()) {
        keep(0, videoDuration_);
        videoPlayer_->seek(0);
    }
}

bool CorvantaSdkVideoEditorViewModel::hasChanges() const {
    return !keepsAll() || videoRotation() != 0 || volumeHeight() != initialVolumeHeight;
}

bool CorvantaSdkVideoEditorViewModel::isFreeAt(double position) const {
    return isReady() && isBetweenHandlesAt(position) && getTrimEdge(QPointF(position, 0)) == TrimEdge::none;
}

bool CorvantaSdkVideoEditorViewModel::isBetweenHandlesAt(double position) const {
    return isReady() && position >= leftEdgePosition_ + handleInset &&
           position <= rightEdgePosition_ - handleInset;
}

double CorvantaSdkVideoEditorViewModel::frameDistance() const {
    return isReady() ? trimmerInitialWidth() * frameDuration_ / videoDuration_ : 0;
}

} // namespace corvanta
