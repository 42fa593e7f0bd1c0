#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEncoding.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFrameRate.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvanta {

/// What a join is asked for. What is absent follows the files: copied if they are alike, else as most of them
/// are.
struct CorvantaSdkVideoJoinOptions {
    /// Pixels, even, from 128 to 8190, as they are shown; one side alone keeps the shape that most seconds of
    /// the files have. Any of these keeps the files from being copied.
    std::optional<std::int64_t> width = {};
    std::optional<std::int64_t> height = {};
    std::optional<CorvantaSdkVideoFrameRate> framesRate = {};
    /// Absent: `high` quality, in H.264, or in HEVC if the pictures are of high dynamic range or wide gamut;
    /// sound of the rate and the channels that most seconds have.
    std::optional<CorvantaSdkVideoEncoding> encoding = {};
    /// The container, as the extension without a dot; absent: that of the first file. Files that are alike
    /// are copied into another one if that takes their codecs. What is merged is "mp4".
    std::optional<std::string> fileExtension = {};
};

/// How a join makes one video of several.
enum class CorvantaSdkVideoJoinWay {
    /// Nothing is encoded.
    copied,
    /// Picture and sound are encoded.
    merged,
};

/// What a join of some files would do, found out without encoding anything.
struct CorvantaSdkVideoJoinInspection {
    CorvantaSdkVideoJoinWay way = CorvantaSdkVideoJoinWay::copied;
    /// What keeps the files from being copied, in words: "the width of video track 0 is 320 in b.mp4 and 160
    /// in a.mp4". Empty if they are.
    std::string obstacle;
    /// Of the file that is written, without a dot.
    std::string fileExtension;
    /// How long it will be.
    double seconds = 0;
    /// Of the merged picture, in pixels; absent if there is none, or for a copy.
    std::optional<std::int64_t> width = {};
    std::optional<std::int64_t> height = {};
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::unknown;
    /// How it is encoded; absent for a copy.
    std::optional<CorvantaSdkVideoEncoding> encoding = {};
};

/// The name of the case.
constexpr std::string_view name(CorvantaSdkVideoJoinWay way) {
    return way == CorvantaSdkVideoJoinWay::copied ? "copied" : "merged";
}

} // namespace corvanta
