#include <platform/AssetReader.hpp>

#include <platform/Errors.hpp>
#include <platform/MediaOpening.hpp>
#include <platform/MediaPacket.hpp>
#include <platform/MediaTracks.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
}

namespace corvanta {

namespace {

// AVI, and what comes from it, states when a picture is decoded alone.
bool hasTimes(OpenMedia& media, int track) {
    constexpr int enough = 64;
    const PacketPointer packet(av_packet_alloc());
    for (int seen = 0; packet && seen < enough && media.read(*packet); av_packet_unref(packet.get())) {
        if (packet->stream_index == track) {
            if (packet->pts == AV_NOPTS_VALUE) {
                return false;
            }
            ++seen;
        }
    }
    return true;
}

} // namespace

struct AssetReader::Context {
    Context(const URL& url, std::stop_token stop)
        : path(url.path()), media(path, {.stop = std::move(stop)}) {}

    AVFormatContext& format() const { return media.format(); }

    std::span<AVStream* const> streams() const { return {format().streams, format().nb_streams}; }

    const AVStream* firstTrack(AVMediaType type) const { return corvanta::firstTrack(format(), type); }

    const std::string path;
    // Most containers tell what is wanted in their header; the others need some packets read.
    OpenMedia media;
};

AssetReader::AssetReader(const URL& url, std::stop_token stop)
    : context_(std::make_unique<Context>(url, std::move(stop))) {}

AssetReader::AssetReader(AssetReader&&) noexcept = default;
AssetReader& AssetReader::operator=(AssetReader&&) noexcept = default;
AssetReader::~AssetReader() = default;

double AssetReader::duration() {
    const AVFormatContext& format = context_->format();
    if (format.duration == AV_NOPTS_VALUE) {
        context_->media.analyse();
    }
    const double seconds = static_cast<double>(format.duration) / AV_TIME_BASE;
    // What stands for "unknown" is beyond that as well.
    if (!isPossibleDuration(seconds)) {
        throw PlatformError("AssetReader", AVERROR_INVALIDDATA,
                            context_->path + ": its duration is not known");
    }
    return seconds;
}

std::optional<double> AssetReader::statedDuration() const {
    const std::int64_t duration = context_->format().duration;
    return duration == AV_NOPTS_VALUE ? std::nullopt
                                      : std::optional(static_cast<double>(duration) / AV_TIME_BASE);
}

std::size_t AssetReader::trackCount() const { return context_->format().nb_streams; }

std::optional<AffineTransform> AssetReader::firstVideoTrackTransform() {
    if (context_->firstTrack(AVMEDIA_TYPE_VIDEO) == nullptr) {
        context_->media.analyse();
    }
    return displayTransform(context_->format());
}

std::optional<VideoTrackFormat> AssetReader::firstVideoTrackFormat() {
    context_->media.analyse();
    const AVStream* track = context_->firstTrack(AVMEDIA_TYPE_VIDEO);
    if (track == nullptr) {
        return std::nullopt;
    }
    VideoTrackFormat format;
    format.position = std::ranges::count_if(
        context_->streams().first(static_cast<std::size_t>(track->index)),
        [](const AVStream* stream) { return stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO; });
    format.codec = avcodec_get_name(track->codecpar->codec_id);
    format.baseRate = {track->r_frame_rate.num, track->r_frame_rate.den};
    format.averageRate = {track->avg_frame_rate.num, track->avg_frame_rate.den};
    format.hasTimes = hasTimes(context_->media, track->index);
    return format;
}

bool AssetReader::hasAudioTrack() {
    context_->media.analyse();
    return context_->firstTrack(AVMEDIA_TYPE_AUDIO) != nullptr;
}

std::optional<int> AssetReader::soundTrack() {
    context_->media.analyse();
    const AVStream* const track = chosenSound(context_->format());
    return track != nullptr ? std::optional(track->index) : std::nullopt;
}

std::optional<double> AssetReader::statedPictureBytes() const {
    const AVStream* track = context_->firstTrack(AVMEDIA_TYPE_VIDEO);
    // Of a Matroska file the head states a rate that its writer was told of.
    const bool countsPackets = std::string_view(context_->format().iformat->name).starts_with("mov,");
    if (track == nullptr || !countsPackets || track->codecpar->bit_rate <= 0 || track->duration <= 0) {
        return std::nullopt;
    }
    const double seconds = static_cast<double>(track->duration) * av_q2d(track->time_base);
    return static_cast<double>(track->codecpar->bit_rate) / 8 * seconds;
}

std::int64_t AssetReader::listedPictureBytes(double start, double end) const {
    const AVStream* const track = context_->firstTrack(AVMEDIA_TYPE_VIDEO);
    if (track == nullptr) {
        return 0;
    }
    AVStream* const listed = context_->streams()[static_cast<std::size_t>(track->index)];
    const std::int64_t fileStart = context_->format().start_time;
    const double zero = fileStart == AV_NOPTS_VALUE ? 0 : static_cast<double>(fileStart) / AV_TIME_BASE;
    bool hasBegun = false;
    std::int64_t bytes = 0;
    for (int index = 0; index < avformat_index_get_entries_count(listed); ++index) {
        const AVIndexEntry* const entry = avformat_index_get_entry(listed, index);
        const double time = static_cast<double>(entry->timestamp) * av_q2d(track->time_base) - zero;
        hasBegun = hasBegun || (time >= start && (entry->flags & AVINDEX_KEYFRAME) != 0);
        bytes += hasBegun && time < end ? entry->size : 0;
    }
    return bytes;
}

std::optional<double> AssetReader::statedSoundDuration() const {
    const AVStream* const track = chosenSound(context_->format());
    return track == nullptr || track->duration <= 0
               ? std::nullopt
               : std::optional(static_cast<double>(track->duration) * av_q2d(track->time_base));
}

std::vector<int> AssetReader::coverTracks() const {
    std::vector<int> covers;
    for (const AVStream* track : context_->streams()) {
        if (isCover(*track)) {
            covers.push_back(track->index);
        }
    }
    return covers;
}

bool AssetReader::hasApplicationTags() const {
    const AVDictionaryEntry* tag = nullptr;
    while ((tag = av_dict_get(context_->format().metadata, "", tag, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        if (std::string_view(tag->key).find('.') != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

} // namespace corvanta
