#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

namespace corvanta {

void CorvantaSdkVideoEditorViewModel::resizeTrimmer(const QSizeF& forScreenSize) {
    screenWidth_ = forScreenSize.width();
    screenHeight_ = forScreenSize.height();
    setupInitialUI();
    if (isReady() && isTrimmerRangeVisible()) {
        geometry_.placeAround({trimmerStart(), stopAt()});
        showFrame();
    }
}

void CorvantaSdkVideoEditorViewModel::showFrame() {
    trimmerXOffset_ = geometry_.leftSide();
    leftSpaceSize_ = geometry_.leftSpace();
    setRightSpaceSize(geometry_.rightSpace());
    trimmerSize_ = QSizeF(geometry_.frameWidth(), trimmerHeight);
}

void CorvantaSdkVideoEditorViewModel::moveStartBy(double distance) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    geometry_.moveLeftEdgeBy(distance);
    showFrame();
    setTrimmerStart(geometry_.range().start);
    videoPlayer_->seek(trimmerStart());
}

void CorvantaSdkVideoEditorViewModel::moveEndBy(double distance) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    geometry_.moveRightEdgeBy(distance);
    showFrame();
    setStopAt(geometry_.range().end);
}

void CorvantaSdkVideoEditorViewModel::moveRangeBy(double distance) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    geometry_.moveBy(distance);
    showFrame();
    setTrimmerStart(geometry_.range().start);
    setStopAt(geometry_.range().end);
    videoPlayer_->seek(trimmerStart());
}

void CorvantaSdkVideoEditorViewModel::keep(double start, double end) {
    if (!isReady()) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    const CorvantaSdkVideoTimeRange kept = geometry_.nearestTo({start, end}, start != trimmerStart());
    geometry_.placeAround(kept);
    showFrame();
    setTrimmerStart(kept.start);
    setStopAt(kept.end);
}

void CorvantaSdkVideoEditorViewModel::resetRange() {
    if (isReady()) {
        keep(0, videoDuration());
        videoPlayer_->seek(0);
    }
}

bool CorvantaSdkVideoEditorViewModel::hasChanges() const {
    return !keepsAll() || videoRotation() != 0 || volumeHeight() != initialVolumeHeight;
}

bool CorvantaSdkVideoEditorViewModel::isFreeAt(double position) const {
    return isBetweenHandlesAt(position) && geometry_.getTrimEdge(position) == TrimEdge::none;
}

bool CorvantaSdkVideoEditorViewModel::isBetweenHandlesAt(double position) const {
    return isReady() && geometry_.isBetweenHandles(position);
}

double CorvantaSdkVideoEditorViewModel::frameDistance() const {
    return isReady() ? trimmerInitialWidth() * frameDuration_ / videoDuration() : 0;
}

} // namespace corvanta
