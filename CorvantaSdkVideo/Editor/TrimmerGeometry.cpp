#include <CorvantaSdkVideo/Editor/TrimmerGeometry.hpp>

#include <algorithm>
#include <cmath>

namespace corvanta {

namespace {

constexpr double centerTouchDistance = 16;
constexpr double edgeTouchDistance = 48;

} // namespace

void TrimmerGeometry::layOut(double stripWidth) {
    stripWidth_ = stripWidth;
    frameWidth_ = stripWidth;
    setLeftEdge(handleInset);
    setRightEdge(stripWidth - handleInset);
}

CorvantaSdkVideoTimeRange TrimmerGeometry::range() const {
    return {std::max(0.0, secondsAt(leftSide_)), std::min(duration_, secondsAt(rightSide_))};
}

bool TrimmerGeometry::isWhole(const CorvantaSdkVideoTimeRange& range) const {
    // An edge that was brought back by hand stands a hair beside the end.
    const double hair = duration_ / std::max(1.0, 4 * stripWidth_);
    return range.start <= hair && range.end >= duration_ - hair;
}

// The order decides where zones overlap: a narrow frame is moved, not resized.
TrimEdge TrimmerGeometry::getTrimEdge(double position) const {
    if (std::abs(position - center()) <= centerTouchDistance) {
        return TrimEdge::center;
    }
    if (std::abs(position - rightEdge_) <= edgeTouchDistance) {
        return TrimEdge::right;
    }
    if (std::abs(position - leftEdge_) <= edgeTouchDistance) {
        return TrimEdge::left;
    }
    return TrimEdge::none;
}

bool TrimmerGeometry::isBetweenHandles(double position) const {
    return position >= leftEdge_ + handleInset && position <= rightEdge_ - handleInset;
}

bool TrimmerGeometry::moveRightEdge(double position) {
    if (!(position - leftEdge_ > minimumEdgeDistance && stripWidth_ - handleInset > position)) {
        return false;
    }
    rightSpace_ = calculateRightSpaceSize(position);
    setRightEdge(position);
    frameWidth_ = rightSide_ - leftSide_;
    return true;
}

bool TrimmerGeometry::moveLeftEdge(double position) {
    if (!(rightEdge_ - position > minimumEdgeDistance && position > handleInset)) {
        return false;
    }
    leftSpace_ = calculateLeftSpaceSize(position);
    setLeftEdge(position);
    frameWidth_ = rightSide_ - leftSide_;
    return true;
}

bool TrimmerGeometry::moveTrimmerCenter(double position) {
    const double delta = position - center();
    const double left = leftEdge_ + delta;
    const double right = rightEdge_ + delta;
    // Tested on the very numbers that are stored, so that rounding can't put the end past the duration.
    if (!(left >= handleInset && right + handleInset <= stripWidth_)) {
        return false;
    }
    setLeftEdge(left);
    setRightEdge(right);
    // The spaces are functions of the touch, not of the edges.
    leftSpace_ = calculateLeftSpaceSize(position);
    rightSpace_ = calculateRightSpaceSize(position);
    return true;
}

void TrimmerGeometry::moveLeftEdgeBy(double distance) {
    // On a smaller screen the edges may stand closer than they can be brought here.
    const double furthest = std::max(leftEdge_, rightEdge_ - minimumEdgeDistance);
    placeEdges(std::max(handleInset, std::min(leftEdge_ + distance, furthest)), rightEdge_);
}

void TrimmerGeometry::moveRightEdgeBy(double distance) {
    const double nearest = std::min(rightEdge_, leftEdge_ + minimumEdgeDistance);
    const double last = stripWidth_ - handleInset;
    placeEdges(leftEdge_, std::min(last, std::max(rightEdge_ + distance, nearest)));
}

void TrimmerGeometry::moveBy(double distance) {
    const double toTheRight = stripWidth_ - handleInset - rightEdge_;
    const double possible = std::max(handleInset - leftEdge_, std::min(distance, toTheRight));
    placeEdges(leftEdge_ + possible, rightEdge_ + possible);
}

CorvantaSdkVideoTimeRange TrimmerGeometry::nearestTo(const CorvantaSdkVideoTimeRange& range,
                                                     bool movesStart) const {
    const double pointsPerSecond = stripWidth_ / duration_;
    const double least = (minimumEdgeDistance + 2 * handleInset) / pointsPerSecond;
    const double first = std::clamp(range.start, 0.0, std::max(0.0, duration_ - least));
    const double last = std::clamp(range.end, std::min(least, duration_), duration_);
    // The edge that stays holds the one that moves.
    if (movesStart) {
        return {std::min(first, std::max(0.0, last - least)), last};
    }
    return {first, std::max(last, std::min(duration_, first + least))};
}

void TrimmerGeometry::placeAround(const CorvantaSdkVideoTimeRange& range) {
    const double pointsPerSecond = stripWidth_ / duration_;
    placeEdges(range.start * pointsPerSecond + handleInset, range.end * pointsPerSecond - handleInset);
}

double TrimmerGeometry::calculateLeftSpaceSize(double position) const {
    return std::min(position, thumbnailHorizontalPadding);
}

double TrimmerGeometry::calculateRightSpaceSize(double position) const {
    return std::min(stripWidth_ - position, thumbnailHorizontalPadding);
}

void TrimmerGeometry::setLeftEdge(double position) {
    leftEdge_ = position;
    leftSide_ = position - handleInset;
}

void TrimmerGeometry::setRightEdge(double position) {
    rightEdge_ = position;
    rightSide_ = position + handleInset;
}

void TrimmerGeometry::placeEdges(double left, double right) {
    setLeftEdge(left);
    setRightEdge(right);
    leftSpace_ = calculateLeftSpaceSize(left);
    rightSpace_ = calculateRightSpaceSize(right);
    frameWidth_ = rightSide_ - leftSide_;
}

} // namespace corvanta
