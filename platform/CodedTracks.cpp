#include <platform/CodedTracks.hpp>

#include <platform/MediaPacket.hpp>
#include <platform/MediaTracks.hpp>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <span>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace corvanta {

namespace {

// Behind the last key picture of most files, so that each track has a packet there.
constexpr std::int64_t tailSeconds = 15;

std::span<AVStream* const> streamsOf(const AVFormatContext& format) {
    return {format.streams, format.nb_streams};
}

bool isPictureOrSound(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    return (type == AVMEDIA_TYPE_VIDEO && !isCover(stream)) || type == AVMEDIA_TYPE_AUDIO;
}

bool isInterlaced(AVFieldOrder order) { return order != AV_FIELD_UNKNOWN && order != AV_FIELD_PROGRESSIVE; }

CodedTrack described(const AVStream& stream) {
    const AVCodecParameters& codec = *stream.codecpar;
    CodedTrack track;
    track.number = stream.index;
    track.isPicture = codec.codec_type == AVMEDIA_TYPE_VIDEO;
    track.codec = avcodec_get_name(codec.codec_id);
    track.codecId = codec.codec_id;
    track.profile = codec.profile;
    if (codec.extradata != nullptr) {
        track.parameters.assign(codec.extradata, codec.extradata + codec.extradata_size);
    }
    const AVRational stated =
        stream.sample_aspect_ratio.num > 0 ? stream.sample_aspect_ratio : codec.sample_aspect_ratio;
    if (stated.num > 0 && stated.den > 0) {
        const int divisor = std::gcd(stated.num, stated.den);
        track.aspectWidth = stated.num / divisor;
        track.aspectHeight = stated.den / divisor;
    }
    track.isInterlaced = isInterlaced(codec.field_order);
    const AVRational rate = stream.avg_frame_rate;
    track.rate = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 0;
    return track;
}

double secondsOf(std::int64_t ticks, AVRational timeBase) {
    return static_cast<double>(ticks) * av_q2d(timeBase);
}

// The ends of the tracks that have packets from here on.
std::map<int, double> endsOf(OpenMedia& media) {
    const AVFormatContext& format = media.format();
    const double start =
        format.start_time == AV_NOPTS_VALUE ? 0 : static_cast<double>(format.start_time) / AV_TIME_BASE;
    std::map<int, double> ends;
    const PacketPointer packet(av_packet_alloc());
    for (; packet && media.read(*packet); av_packet_unref(packet.get())) {
        const AVStream& stream = *format.streams[packet->stream_index];
        const std::int64_t time = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        if (!isPictureOrSound(stream) || time == AV_NOPTS_VALUE) {
            continue;
        }
        const AVRational rate = stream.avg_frame_rate;
        const double length = packet->duration > 0           ? secondsOf(packet->duration, stream.time_base)
                              : rate.num > 0 && rate.den > 0 ? 1 / av_q2d(rate)
                                                             : 0;
        const double end = secondsOf(time, stream.time_base) - start + length;
        const auto [found, isNew] = ends.try_emplace(stream.index, end);
        found->second = std::max(found->second, end);
    }
    return ends;
}

} // namespace

std::vector<CodedTrack> codedTracks(const std::string& path, OpenMedia::Options options) {
    OpenMedia media(path, std::move(options));
    media.analyse();
    std::vector<CodedTrack> tracks;
    for (const AVStream* stream : streamsOf(media.format())) {
        if (isPictureOrSound(*stream)) {
            tracks.push_back(described(*stream));
        }
    }
    return tracks;
}

std::map<int, double> trackEnds(const std::string& path, OpenMedia::Options options) {
    OpenMedia media(path, options);
    media.analyse();
    const auto& format = media.format();
    const auto tracks = std::ranges::count_if(
        streamsOf(format), [](const AVStream* stream) { return isPictureOrSound(*stream); });
    const std::int64_t seconds = format.duration == AV_NOPTS_VALUE ? 0 : format.duration / AV_TIME_BASE;
    if (seconds > 2 * tailSeconds && media.seek(seconds - tailSeconds)) {
        if (auto ends = endsOf(media); std::ssize(ends) == tracks) {
            return ends;
        }
    }
    OpenMedia whole(path, std::move(options));
    whole.analyse();
    return endsOf(whole);
}

} // namespace corvanta
