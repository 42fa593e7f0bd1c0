#include <platform/AssetReader.hpp>

#include <platform/Errors.hpp>
#include <platform/FileManager.hpp>

#include <array>
#include <cerrno>
#include <cstdint>
#include <span>
#include <utility>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/intreadwrite.h>
#include <libavutil/log.h>
}

namespace corvanta {

namespace {

PlatformError failure(int code) { return {"AssetReader", code}; }

// A refused file is told by an error; the library's own lines on the host's standard error would only repeat
// it. A host that has set a level of its own keeps it.
void quietenLibrary() {
    [[maybe_unused]] static const bool once = [] {
        if (av_log_get_level() == AV_LOG_INFO) {
            av_log_set_level(AV_LOG_QUIET);
        }
        return true;
    }();
}

struct CloseInput {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};

struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

const AVStream* chosenSound(const AVFormatContext& format) {
    const auto rank = [](const AVStream& track) {
        const bool isDefault = (track.disposition & AV_DISPOSITION_DEFAULT) != 0;
        return std::pair(isDefault, track.codecpar->ch_layout.nb_channels);
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

// A codec's run-in, which a decoder drops.
double skippedSeconds(const AVPacket& packet, const AVStream& track) {
    std::size_t size = 0;
    const std::uint8_t* data = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (data == nullptr || size < sizeof(std::uint32_t) || track.codecpar->sample_rate <= 0) {
        return 0;
    }
    return static_cast<double>(AV_RL32(data)) / track.codecpar->sample_rate;
}

} // namespace

struct AssetReader::Context {
    std::unique_ptr<AVFormatContext, CloseInput> format;
    bool analysed = false;

    // Most containers tell what is wanted in their header; the others need some packets read.
    void analyse() {
        if (!analysed) {
            analysed = true;
            if (const int result = avformat_find_stream_info(format.get(), nullptr); result < 0) {
                throw failure(result);
            }
        }
    }

    const AVStream* firstTrack(AVMediaType type) const {
        for (unsigned index = 0; index < format->nb_streams; ++index) {
            if (format->streams[index]->codecpar->codec_type == type) {
                return format->streams[index];
            }
        }
        return nullptr;
    }
};

AssetReader::AssetReader(const URL& url) : context_(std::make_unique<Context>()) {
    quietenLibrary();
    const std::string path = url.path();
    if (!FileManager::fileExists(path) || FileManager::isEndless(path)) {
        throw failure(AVERROR(ENOENT));
    }
    AVFormatContext* format = nullptr;
    // The protocol's name keeps a relative path with a colon from being read as another protocol.
    const int result = avformat_open_input(&format, ("file:" + path).c_str(), nullptr, nullptr);
    if (result < 0) {
        throw failure(result);
    }
    context_->format.reset(format);
}

AssetReader::AssetReader(AssetReader&&) noexcept = default;
AssetReader& AssetReader::operator=(AssetReader&&) noexcept = default;
AssetReader::~AssetReader() = default;

double AssetReader::duration() {
    const auto& format = context_->format;
    if (format->duration == AV_NOPTS_VALUE) {
        context_->analyse();
    }
    if (format->duration == AV_NOPTS_VALUE) {
        throw failure(AVERROR_INVALIDDATA);
    }
    return static_cast<double>(format->duration) / AV_TIME_BASE;
}

std::optional<AffineTransform> AssetReader::firstVideoTrackTransform() {
    if (context_->firstTrack(AVMEDIA_TYPE_VIDEO) == nullptr) {
        context_->analyse();
    }
    const AVStream* track = context_->firstTrack(AVMEDIA_TYPE_VIDEO);
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

std::optional<VideoTrackFormat> AssetReader::firstVideoTrackFormat() {
    context_->analyse();
    const AVStream* track = context_->firstTrack(AVMEDIA_TYPE_VIDEO);
    if (track == nullptr || (track->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
        return std::nullopt;
    }
    VideoTrackFormat format;
    format.codec = avcodec_get_name(track->codecpar->codec_id);
    format.baseRate = {track->r_frame_rate.num, track->r_frame_rate.den};
    format.averageRate = {track->avg_frame_rate.num, track->avg_frame_rate.den};
    return format;
}

bool AssetReader::hasAudioTrack() {
    context_->analyse();
    return context_->firstTrack(AVMEDIA_TYPE_AUDIO) != nullptr;
}

std::optional<double> AssetReader::soundStart() {
    context_->analyse();
    AVFormatContext* const format = context_->format.get();
    const AVStream* const track = chosenSound(*format);
    if (track == nullptr || format->start_time == AV_NOPTS_VALUE) {
        return std::nullopt;
    }
    const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
    while (packet && av_read_frame(format, packet.get()) >= 0) {
        if (packet->stream_index == track->index && packet->pts != AV_NOPTS_VALUE) {
            return static_cast<double>(packet->pts) * av_q2d(track->time_base) +
                   skippedSeconds(*packet, *track) - static_cast<double>(format->start_time) / AV_TIME_BASE;
        }
        av_packet_unref(packet.get());
    }
    return std::nullopt;
}

} // namespace corvanta
