#include <CorvantaSdkVideo/Commands/Encoding/PictureRange.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <platform/PixelFormat.hpp>

namespace corvanta {

namespace {

using Kind = PictureRange::Kind;

Kind kindOf(const CorvantaSdkVideoPictureColor& color) {
    if (color.transfer == "smpte2084") {
        return Kind::pq;
    }
    if (color.transfer == "arib-std-b67") {
        return Kind::hlg;
    }
    return color.primaries == "bt2020" ? Kind::wideGamut : Kind::standard;
}

std::string either(const std::string& value, const std::string& fallback) {
    return value.empty() ? fallback : value;
}

CorvantaSdkVideoPictureColor completed(const CorvantaSdkVideoPictureColor& color) {
    return {.range = either(color.range, "tv"),
            .primaries = either(color.primaries, "bt2020"),
            .transfer = either(color.transfer, "bt2020-10"),
            .matrix = either(color.matrix, "bt2020nc")};
}

} // namespace

PictureRange rangeOf(const VideoTrack& track) {
    PictureRange range;
    for (const VideoItem& item : track.tracks) {
        if (item.trackInfo == nullptr) {
            continue;
        }
        const CorvantaSdkVideoPictureColor& color = item.trackInfo->color;
        const std::string path = item.videoInfo->url.path();
        const Kind kind = kindOf(color);
        range.isDeep = range.isDeep || bitsPerComponent(item.trackInfo->pixelFormat) > 8;
        if (range.path.empty()) {
            range.path = path;
            range.kind = kind;
            range.color = kind == Kind::standard ? color : completed(color);
        } else if (kind != range.kind) {
            throw CorvantaSdkVideoError(CorvantaSdkVideoError::encodingFailed,
                                        "the picture of " + path + " is " + described(kind) + ", that of " +
                                            range.path + " " + described(range.kind) +
                                            ": one track can't hold both");
        }
    }
    return range;
}

std::string described(Kind kind) {
    switch (kind) {
    case Kind::standard:
        break;
    case Kind::wideGamut:
        return "of wide gamut (BT.2020)";
    case Kind::hlg:
        return "of high dynamic range (HLG)";
    case Kind::pq:
        return "of high dynamic range (PQ)";
    }
    return "of standard range";
}

} // namespace corvanta
