#pragma once

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/MergeTracks.hpp>

namespace corvanta {

/// What the pictures of an output track are to keep of their colours.
struct PictureRange {
    enum class Kind { standard, wideGamut, hlg, pq };

    Kind kind = Kind::standard;
    /// Whether one of them has more than 8 bits.
    bool isDeep = false;
    /// Complete for any kind but `standard`, whose pictures keep their own tags.
    CorvantaSdkVideoPictureColor color = {};
    /// Of the first file with pictures.
    std::string path = {};
};

/// Throws CorvantaSdkVideoError if the track joins pictures of different kinds, which one track can't hold.
PictureRange rangeOf(const VideoTrack& track);

/// For people: "of high dynamic range (PQ)".
std::string described(PictureRange::Kind kind);

} // namespace corvanta
