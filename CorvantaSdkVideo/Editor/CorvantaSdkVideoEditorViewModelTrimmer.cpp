#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/Gestures.hpp>
#include <CorvantaSdkVideo/Editor/TrimmerGeometry.hpp>

#include <algorithm>
#include <cmath>

namespace corvanta {

namespace {

constexpr double centerTouchDistance = 16;
constexpr double edgeTouchDistance = 48;

// Minutes keep counting past the hour; fractions are cut off.
QString durationText(double seconds) {
    if (!std::isfinite(seconds) || seconds < 0 || seconds >= 1e15) {
        return QStringLiteral("00:00");
    }
    const auto whole = static_cast<qint64>(seconds);
    return QStringLiteral("%1:%2")
        .arg(whole / 60, 2, 10, QLatin1Char('0'))
        .arg(whole % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

void CorvantaSdkVideoEditorViewModel::setupTrimmer(const QSizeF& forScreenSize) {
    screenWidth_ = forScreenSize.width();
    screenHeight_ = forScreenSize.height();
    setupInitialUI();
    startOnQtThread(readVideo(this, videosInformationGenerator_, videoURL_));
}

void CorvantaSdkVideoEditorViewModel::setupInitialUI() {
    const double width = trimmerInitialWidth();
    trimmerSize_ = QSizeF(width, trimmerHeight);
    thumbnailSize_ = QSizeF((width - totalThumbnailListHorizontalPadding()) / thumbnailCount, trimmerHeight);
    setLeftEdgePosition(handleInset);
    setRightEdgePosition(width - handleInset);
}

void CorvantaSdkVideoEditorViewModel::applyTrimming(const QPointF& location, const QRectF& strip) {
    if (!holds(strip, location)) {
        return;
    }
    updateUIforTrimmingIfNeeded();
    switch (getTrimEdge(location)) {
    case TrimEdge::right:
        moveRightEdge(location.x());
        break;
    case TrimEdge::left:
        moveLeftEdge(location.x());
        break;
    case TrimEdge::center:
        moveTrimmerCenter(location.x());
        break;
    case TrimEdge::none:
        break;
    }
}

void CorvantaSdkVideoEditorViewModel::updateUIforTrimmingIfNeeded() {
    if (trimmerBorderColor() == CorvantaColor::gray) {
        trimmerBorderColor_ = CorvantaColor::ambar;
        isTrimmerRangeVisible_ = true;
    }
}

// The order decides where zones overlap: a narrow frame is moved, not resized.
TrimEdge CorvantaSdkVideoEditorViewModel::getTrimEdge(const QPointF& location) const {
    const double x = location.x();
    if (std::abs(x - trimmerCenter()) <= centerTouchDistance) {
        return TrimEdge::center;
    }
    if (std::abs(x - rightEdgePosition_) <= edgeTouchDistance) {
        return TrimEdge::right;
    }
    if (std::abs(x - leftEdgePosition_) <= edgeTouchDistance) {
        return TrimEdge::left;
    }
    return TrimEdge::none;
}

void CorvantaSdkVideoEditorViewModel::moveRightEdge(double position) {
    if (!(position - leftEdgePosition_ > minimumEdgeDistance &&
          trimmerInitialWidth() - handleInset > position)) {
        return;
    }
    setRightSpaceSize(calculateRightSpaceSize(position));
    setRightEdgePosition(position);
    trimmerSize_ = QSizeF(trimmerRightEdgePosition_ - trimmerXOffset(), trimmerSize().height());
    setStopAt(secondsAt(trimmerRightEdgePosition_));
}

void CorvantaSdkVideoEditorViewModel::moveLeftEdge(double position) {
    if (!(rightEdgePosition_ - position > minimumEdgeDistance && position > handleInset)) {
        return;
    }
    leftSpaceSize_ = calculateLeftSpaceSize(position);
    setLeftEdgePosition(position);
    trimmerSize_ = QSizeF(trimmerRightEdgePosition_ - trimmerXOffset(), trimmerSize().height());
    setTrimmerStart(secondsAt(trimmerXOffset()));
    seek(trimmerStart());
}

void CorvantaSdkVideoEditorViewModel::moveTrimmerCenter(double position) {
    const double delta = position - trimmerCenter();
    const double left = leftEdgePosition_ + delta;
    const double right = rightEdgePosition_ + delta;
    // Tested on the very numbers that are stored, so that rounding can't put the end past the duration.
    if (!(left >= handleInset && right + handleInset <= trimmerInitialWidth())) {
        return;
    }
    setLeftEdgePosition(left);
    // The spaces are functions of the touch, not of the edges.
    leftSpaceSize_ = calculateLeftSpaceSize(position);
    setRightSpaceSize(calculateRightSpaceSize(position));
    setTrimmerStart(secondsAt(trimmerXOffset()));
    seek(trimmerStart());
    setRightEdgePosition(right);
    setStopAt(secondsAt(trimmerRightEdgePosition_));
}

double CorvantaSdkVideoEditorViewModel::calculateLeftSpaceSize(double position) const {
    return std::min(position, thumbnailHorizontalPadding);
}

double CorvantaSdkVideoEditorViewModel::calculateRightSpaceSize(double position) const {
    return std::min(trimmerInitialWidth() - position, thumbnailHorizontalPadding);
}

void CorvantaSdkVideoEditorViewModel::setLeftEdgePosition(double position) {
    leftEdgePosition_ = position;
    trimmerXOffset_ = position - handleInset;
}

void CorvantaSdkVideoEditorViewModel::setRightEdgePosition(double position) {
    rightEdgePosition_ = position;
    trimmerRightEdgePosition_ = position + handleInset;
}

void CorvantaSdkVideoEditorViewModel::setRightSpaceSize(double size) {
    rightSpaceSize_ = size;
    showRightWhiteSpace_ = size == thumbnailHorizontalPadding;
}

void CorvantaSdkVideoEditorViewModel::setTrimmerStart(double seconds) {
    trimmerStart_ = seconds;
    updateRange();
}

void CorvantaSdkVideoEditorViewModel::setStopAt(double seconds) {
    stopAt_ = seconds;
    updateRange();
}

void CorvantaSdkVideoEditorViewModel::updateRange() {
    // An edge that was brought back by hand stands a hair beside the end.
    const double hair = videoDuration_ / std::max(1.0, 4 * trimmerInitialWidth());
    keepsAll_ = trimmerStart() <= hair && stopAt() >= videoDuration_ - hair;
    keptLength_ = stopAt() - trimmerStart();
    trimmerRange_ = durationText(trimmerStart()) + QStringLiteral(" - ") + durationText(stopAt());
}

double CorvantaSdkVideoEditorViewModel::secondsAt(double position) const {
    return videoDuration_ * (position / trimmerInitialWidth());
}

} // namespace corvanta
