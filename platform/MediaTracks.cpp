#include <platform/MediaTracks.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>

extern "C" {
#include <libavformat/avformat.h>
}

namespace corvanta {

bool isCover(const AVStream& track) { return (track.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0; }

const AVStream* firstTrack(const AVFormatContext& format, int mediaType) {
    const std::span<AVStream* const> tracks(format.streams, format.nb_streams);
    const auto found = std::ranges::find_if(tracks, [mediaType](const AVStream* track) {
        return track->codecpar->codec_type == mediaType && !isCover(*track);
    });
    return found != tracks.end() ? *found : nullptr;
}

std::optional<AffineTransform> displayTransform(const AVFormatContext& format) {
    const AVStream* track = firstTrack(format, AVMEDIA_TYPE_VIDEO);
    if (track == nullptr) {
        return std::nullopt;
    }
    std::size_t size = 0;
    const auto* matrix = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(track, AV_PKT_DATA_DISPLAYMATRIX, &size));
    if (matrix == nullptr || size < 9 * sizeof(std::int32_t)) {
        return AffineTransform{};
    }
    constexpr double fixedPointOne = 65536;
    return AffineTransform{matrix[0] / fixedPointOne, matrix[1] / fixedPointOne, matrix[3] / fixedPointOne,
                           matrix[4] / fixedPointOne};
}

const AVStream* chosenSound(const AVFormatContext& format) {
    const auto rank = [](const AVStream& track) {
        return std::tuple((track.event_flags & AVSTREAM_EVENT_FLAG_NEW_PACKETS) != 0,
                          (track.disposition & AV_DISPOSITION_DEFAULT) != 0,
                          track.codecpar->ch_layout.nb_channels);
    };
    const AVStream* best = nullptr;
    for (const AVStream* track : std::span(format.streams, format.nb_streams)) {
        if (track->codecpar->codec_type == AVMEDIA_TYPE_AUDIO &&
            (best == nullptr || rank(*track) > rank(*best))) {
            best = track;
        }
    }
    return best;
}

} // namespace corvanta
