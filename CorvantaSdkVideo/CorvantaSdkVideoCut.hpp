#pragma once

#include <optional>

namespace corvanta {

/// How an edit cuts the picture.
enum class CorvantaSdkVideoCut {
    /// Without encoding anything: the picture starts at the next key picture, see CorvantaSdkVideoEditor.
    copied,
    /// Every picture with `start <= time < end`, and none else. What can't be copied is encoded anew.
    exact,
    /// `exact` where `copied` would lose pictures, else `copied`.
    automatic,
};

/// A part of a video, in seconds from its start; `start` belongs to it, `end` doesn't.
struct CorvantaSdkVideoTimeRange {
    double start = 0;
    double end = 0;
};

/// How the picture of an edit was made.
enum class CorvantaSdkVideoCutWay {
    /// Nothing was encoded.
    copied,
    /// The pictures at the ends were encoded, the ones between copied.
    joined,
    /// All were encoded: the codec or the way it was used allows nothing else.
    encoded,
};

/// What a cut would do, found out without encoding anything.
struct CorvantaSdkVideoCutInspection {
    /// Seconds from the video's start to the first picture that `copied` would keep; absent if it would keep
    /// none.
    std::optional<double> copiedStart;
    /// Whether `copied` would leave out pictures of the range.
    bool copyingLoses = false;
    /// Whether `exact` can copy some of the pictures.
    bool exactCopies = false;
    /// Seconds of picture that `exact` would encode.
    double encodedSeconds = 0;
};

} // namespace corvanta
