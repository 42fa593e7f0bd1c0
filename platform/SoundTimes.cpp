#include <platform/SoundTimes.hpp>

#include <platform/MediaPacket.hpp>
#include <platform/MediaTracks.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/intreadwrite.h>
}

namespace corvanta {

namespace {

// Containers round times to a millisecond, and recorders state them a little late and early in turn.
constexpr double tolerance = 0.010;

// What decoding drops at the ends of a packet, in samples.
struct Dropped {
    std::uint32_t before = 0;
    std::uint32_t behind = 0;
};

Dropped droppedOf(const AVPacket& packet) {
    std::size_t size = 0;
    const std::uint8_t* data = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (data == nullptr || size < 2 * sizeof(std::uint32_t)) {
        return {};
    }
    return {AV_RL32(data), AV_RL32(data + sizeof(std::uint32_t))};
}

bool hasFramesOfManyLengths(AVCodecID codec) {
    return codec == AV_CODEC_ID_VORBIS || codec == AV_CODEC_ID_OPUS;
}

// Sound of a packet that decoding gives.
struct Piece {
    // Seconds from the file's start; absent: the piece follows the one before.
    std::optional<double> begin;
    double length = 0;
    // A stated length is rounded, or the time of the next packet.
    bool isExact = false;
};

// Lays one piece behind the other, and finds where their times say otherwise.
class SoundLine {
  public:
    // `longest`: what no time can lie behind. `mayJump`: times can begin anew on the way.
    SoundLine(double longest, bool mayJump) : longest_(longest), mayJump_(mayJump) {}

    void add(const Piece& piece) {
        if (waiting_) {
            place(*waiting_, &piece);
        }
        waiting_ = piece;
    }

    SoundTimes finish() {
        if (waiting_) {
            place(*std::exchange(waiting_, std::nullopt), nullptr);
        }
        return std::move(times_);
    }

  private:
    void place(Piece piece, const Piece* next) {
        if (!piece.isExact && piece.begin && next != nullptr && next->begin) {
            const double step = *next->begin - *piece.begin;
            if (step > 0 && (piece.length <= 0 || std::abs(step - piece.length) <= tolerance)) {
                piece.length = step;
            }
        }
        if (piece.begin) {
            follow(*piece.begin, piece.length, next);
        }
        times_.duration += std::max(0.0, piece.length);
        isFirst_ = false;
    }

    void follow(double begin, double length, const Piece* next) {
        const double expected = times_.duration + shift_;
        const double apart = begin - expected;
        const bool isLateStart = isFirst_ && apart > 0;
        if (std::abs(apart) <= tolerance && !isLateStart) {
            return;
        }
        const bool isBelied =
            next != nullptr && next->begin && std::abs(*next->begin - (expected + length)) <= tolerance;
        if (isBelied) {
            return;
        }
        constexpr double longestStep = 10;
        shift_ += apart;
        if (begin > longest_ || apart < -longestStep ||
            (mayJump_ && (apart > longestStep || (apart < -0.1 && !isFirst_)))) {
            return;
        }
        // The end of what came before goes, and the beginning of what follows stays.
        const double from = times_.breaks.empty() ? 0 : times_.breaks.back().at;
        times_.breaks.push_back({std::max(from, times_.duration + std::min(0.0, apart)), apart});
    }

    double longest_;
    bool mayJump_;
    bool isFirst_ = true;
    // By how much the line is ahead of the samples.
    double shift_ = 0;
    std::optional<Piece> waiting_;
    SoundTimes times_;
};

double longestTime(const AVFormatContext& format) {
    constexpr double day = 24.0 * 60 * 60;
    const bool isKnown =
        format.duration != AV_NOPTS_VALUE && format.duration_estimation_method != AVFMT_DURATION_FROM_BITRATE;
    return isKnown ? std::min(day, static_cast<double>(format.duration) / AV_TIME_BASE + 1) : day;
}

bool mayJump(const AVFormatContext& format) { return (format.iformat->flags & AVFMT_TS_DISCONT) != 0; }

// What ffmpeg counts the picture's times from when it takes that alone, in seconds: the file's start, but of
// a transport stream the picture's own.
double zeroOf(const AVFormatContext& format) {
    for (const AVStream* track : std::span(format.streams, format.nb_streams)) {
        const bool isPicture = track->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover(*track);
        if (mayJump(format) && isPicture && track->start_time != AV_NOPTS_VALUE) {
            return static_cast<double>(track->start_time) * av_q2d(track->time_base);
        }
    }
    return static_cast<double>(format.start_time) / AV_TIME_BASE;
}

} // namespace

SoundTimes soundTimes(const std::string& path, OpenMedia::Options options) {
    OpenMedia media(path, std::move(options));
    media.analyse();
    const AVFormatContext& format = media.format();
    const AVStream* const track = chosenSound(format);
    if (track == nullptr || format.start_time == AV_NOPTS_VALUE || track->codecpar->sample_rate <= 0) {
        return {};
    }
    for (AVStream* other : std::span(format.streams, format.nb_streams)) {
        other->discard = other == track ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    const AVCodecParameters& codec = *track->codecpar;
    const double tick = av_q2d(track->time_base);
    const double sample = 1.0 / codec.sample_rate;
    const double zero = zeroOf(format);
    SoundLine line(longestTime(format), mayJump(format));
    double toDrop = 0;
    const PacketPointer packet(av_packet_alloc());
    for (; packet && media.read(*packet); av_packet_unref(packet.get())) {
        if (packet->stream_index != track->index) {
            continue;
        }
        Piece piece;
        const int samples = hasFramesOfManyLengths(codec.codec_id)
                                ? 0
                                : av_get_audio_frame_duration2(track->codecpar, packet->size);
        piece.isExact = samples > 0;
        piece.length = piece.isExact ? samples * sample : static_cast<double>(packet->duration) * tick;
        if (packet->pts != AV_NOPTS_VALUE) {
            piece.begin = static_cast<double>(packet->pts) * tick - zero;
        }
        const Dropped dropped = droppedOf(*packet);
        toDrop += dropped.before * sample;
        if (toDrop > 0) {
            const double before = std::min(toDrop, std::max(0.0, piece.length));
            toDrop -= before;
            piece.length -= before;
            if (piece.begin) {
                *piece.begin += before;
            }
        }
        piece.length -= std::min(piece.length, dropped.behind * sample);
        const bool isHidden = (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
        if (!isHidden && (piece.length > 0 || !piece.isExact)) {
            line.add(piece);
        }
    }
    return line.finish();
}

} // namespace corvanta
