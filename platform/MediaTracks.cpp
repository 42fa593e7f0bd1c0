#include <platform/MediaTracks.hpp>

#include <span>
#include <tuple>

extern "C" {
#include <libavformat/avformat.h>
}

namespace corvanta {

bool isCover(const AVStream& track) { return (track.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0; }

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
