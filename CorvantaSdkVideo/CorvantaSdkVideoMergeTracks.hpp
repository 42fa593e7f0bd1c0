#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace corvanta {

/// One stream of one input file.
struct CorvantaSdkVideoMergeMediaEntry {
    /// Position in the list of input files.
    std::int64_t fileIndex = 0;
    /// The stream's `index` in that file.
    std::int64_t entryIndex = 0;

    friend bool operator==(const CorvantaSdkVideoMergeMediaEntry&,
                           const CorvantaSdkVideoMergeMediaEntry&) = default;
};

/// One output video track, played as the entries in order.
struct CorvantaSdkVideoMergeVideoTrack {
    std::vector<CorvantaSdkVideoMergeMediaEntry> tracks;
    /// Pixels; an absent one follows the request's size, then the inputs' aspect.
    std::optional<std::int64_t> width;
    std::optional<std::int64_t> height;

    friend bool operator==(const CorvantaSdkVideoMergeVideoTrack&,
                           const CorvantaSdkVideoMergeVideoTrack&) = default;
};

/// One output audio track, played as the entries in order.
struct CorvantaSdkVideoMergeAudioTrack {
    std::vector<CorvantaSdkVideoMergeMediaEntry> tracks;

    friend bool operator==(const CorvantaSdkVideoMergeAudioTrack&,
                           const CorvantaSdkVideoMergeAudioTrack&) = default;
};

/// One video stream of the single input of an encode, with its output size in pixels.
struct CorvantaSdkVideoEncodeVideoEntry {
    std::int64_t entryIndex = 0;
    std::optional<std::int64_t> width;
    std::optional<std::int64_t> height;

    friend bool operator==(const CorvantaSdkVideoEncodeVideoEntry&,
                           const CorvantaSdkVideoEncodeVideoEntry&) = default;
};

} // namespace corvanta
