#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoProgress.hpp>
#include <platform/URL.hpp>

#include <cstdint>
#include <vector>

namespace corvanta {

/// One edit of a video.
struct CorvantaSdkVideoEditorInput {
    URL videoURL;
    /// Replaced if it exists. Its extension chooses the container; "mp4" and "mov" can hold a turn.
    URL outputURL;
    /// Seconds in the source, 0 or more.
    double startPosition = 0;
    /// Seconds in the source, above `startPosition`, at most the source's duration.
    double endPosition = 0;
    /// The turn to record, in degrees clockwise: a multiple of 90 from -540 to 540; any other angle counts
    /// as 0. It takes the place of the source's own turn.
    std::int64_t rotationAngle = 0;
    /// Factor for the sound: 0 is silence, 1 leaves it as loud as it is.
    float volumen = 1;
    /// How the picture is cut. A source's own turn is kept under `rotationAngle` by any but `copied`.
    CorvantaSdkVideoCut cut = CorvantaSdkVideoCut::copied;
    /// Absent: one range from `startPosition` to `endPosition`. Else the ranges that are kept, one behind the
    /// other in this order, in place of those two; more than one can't be `copied`.
    std::vector<CorvantaSdkVideoTimeRange> ranges = {};
    /// Hears how far the edit has come; absent: nobody does.
    CorvantaSdkVideoProgressCallback onProgress = {};
};

} // namespace corvanta
