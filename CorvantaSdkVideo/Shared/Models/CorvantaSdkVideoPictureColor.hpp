#pragma once

#include <string>

namespace corvanta {

/// What a track's values mean as colours, by ffprobe's names ("bt2020", "smpte2084"); what the file doesn't
/// tell is empty.
struct CorvantaSdkVideoPictureColor {
    /// "tv" or "pc".
    std::string range = {};
    std::string primaries = {};
    std::string transfer = {};
    std::string matrix = {};

    friend bool operator==(const CorvantaSdkVideoPictureColor&,
                           const CorvantaSdkVideoPictureColor&) = default;
};

} // namespace corvanta
