#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>

namespace corvanta {

/// Which part of the trimmer's frame a touch is on.
enum class TrimEdge { right, left, center, none };

/// The frame over the strip of thumbnails: where it stands, how far a hand can move it, and the times that
/// positions stand for. A plain value. Positions are points from the strip's start, times seconds.
class TrimmerGeometry {
  public:
    /// From the frame's outer side to the centre of its grab handle.
    static constexpr double handleInset = 12;
    /// Between the two edges.
    static constexpr double minimumEdgeDistance = 64;
    /// The most that either space takes.
    static constexpr double thumbnailHorizontalPadding = 24;

    /// A strip without a frame, which comes with `layOut`: everything else is 0.
    explicit TrimmerGeometry(double stripWidth) : stripWidth_(stripWidth) {}

    /// Puts the frame around the whole of a strip. The spaces stay as they are.
    void layOut(double stripWidth);
    void setDuration(double seconds) { duration_ = seconds; }

    /// Of the clip; 0 before it is known, and then so are all times.
    double duration() const { return duration_; }
    /// The centres of the grab handles.
    double leftEdge() const { return leftEdge_; }
    double rightEdge() const { return rightEdge_; }
    /// The frame's outer sides.
    double leftSide() const { return leftSide_; }
    double rightSide() const { return rightSide_; }
    double frameWidth() const { return frameWidth_; }
    double center() const { return leftSide_ + frameWidth_ / 2; }
    /// What is shaded beside the frame.
    double leftSpace() const { return leftSpace_; }
    double rightSpace() const { return rightSpace_; }

    double secondsAt(double position) const { return duration_ * (position / stripWidth_); }
    /// The times of the frame's sides, within the clip whatever rounding does.
    CorvantaSdkVideoTimeRange range() const;
    /// Whether a range is the whole clip, by what a hand can tell.
    bool isWhole(const CorvantaSdkVideoTimeRange& range) const;

    TrimEdge getTrimEdge(double position) const;
    /// Inside of the frame and beside what shows of the handles.
    bool isBetweenHandles(double position) const;

    /// A drag has come to a position. False where the frame can't follow it; then nothing has moved.
    bool moveRightEdge(double position);
    bool moveLeftEdge(double position);
    bool moveTrimmerCenter(double position);

    /// As far as the strip's ends and the least distance of the edges allow.
    void moveLeftEdgeBy(double distance);
    void moveRightEdgeBy(double distance);
    void moveBy(double distance);

    /// The nearest range that the clip has and that the edges can stand around: where it is too short,
    /// `movesStart` tells which of its ends gives way.
    CorvantaSdkVideoTimeRange nearestTo(const CorvantaSdkVideoTimeRange& range, bool movesStart) const;
    void placeAround(const CorvantaSdkVideoTimeRange& range);

  private:
    double calculateLeftSpaceSize(double position) const;
    double calculateRightSpaceSize(double position) const;
    void setLeftEdge(double position);
    void setRightEdge(double position);
    void placeEdges(double left, double right);

    double stripWidth_;
    double duration_ = 0;
    double leftEdge_ = 0;
    double rightEdge_ = 0;
    double leftSide_ = 0;
    double rightSide_ = 0;
    /// Not taken from the sides when the frame moves as a whole: rounding would make it shrink and grow.
    double frameWidth_ = 0;
    double leftSpace_ = 0;
    double rightSpace_ = 0;
};

} // namespace corvanta
