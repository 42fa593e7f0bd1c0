#include <platform/CodedPictures.hpp>

#include <platform/Errors.hpp>
#include <platform/NalUnits.hpp>

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

namespace corvanta {

namespace {

using Bytes = std::span<const std::uint8_t>;

PlatformError failure(int code) { return {"AssetReader", code}; }

AVStream& firstPictureTrack(AVFormatContext& format) {
    for (AVStream* track : std::span(format.streams, format.nb_streams)) {
        if (track->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
            (track->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0) {
            return *track;
        }
    }
    throw failure(AVERROR_STREAM_NOT_FOUND);
}

Bytes extradataOf(const AVCodecParameters& codec) {
    return {codec.extradata, static_cast<std::size_t>(codec.extradata_size)};
}

std::string textOf(const char* text) { return text != nullptr ? text : ""; }

template <typename Value>
std::string nameUnlessUnknown(const char* (*nameOf)(Value), Value value) {
    const std::string name = textOf(nameOf(value));
    return name == "unknown" || name == "reserved" ? "" : name;
}

bool hasNewParameters(const AVPacket& packet) {
    std::size_t size = 0;
    return av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, &size) != nullptr ||
           av_packet_get_side_data(&packet, AV_PKT_DATA_PARAM_CHANGE, &size) != nullptr;
}

} // namespace

CodedPictures::CodedPictures(const std::string& path, OpenMedia::Options options)
    : media_(path, std::move(options)) {
    media_.analyse();
    AVFormatContext& format = media_.format();
    track_ = &firstPictureTrack(format);
    for (AVStream* track : std::span(format.streams, format.nb_streams)) {
        track->discard = track == track_ ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    if (format.start_time != AV_NOPTS_VALUE) {
        start_ = av_rescale_q(format.start_time, AV_TIME_BASE_Q, track_->time_base);
    }
}

CodedPictures::~CodedPictures() = default;

void CodedPictures::FreePacket::operator()(AVPacket* packet) const { av_packet_free(&packet); }

int CodedPictures::trackIndex() const { return track_->index; }

PictureFormat CodedPictures::format() const {
    const AVCodecParameters& codec = *track_->codecpar;
    PictureFormat format{.codec = avcodec_get_name(codec.codec_id),
                         .profile = codec.profile,
                         .pixelFormat = textOf(av_get_pix_fmt_name(static_cast<AVPixelFormat>(codec.format))),
                         .colorRange = nameUnlessUnknown(av_color_range_name, codec.color_range),
                         .colorPrimaries = nameUnlessUnknown(av_color_primaries_name, codec.color_primaries),
                         .colorTransfer = nameUnlessUnknown(av_color_transfer_name, codec.color_trc),
                         .colorMatrix = nameUnlessUnknown(av_color_space_name, codec.color_space),
                         .isInterlaced = codec.field_order > AV_FIELD_PROGRESSIVE};
    if (const auto* pixels = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(codec.format))) {
        format.bitsPerComponent = pixels->comp[0].depth;
    }
    if (codec.codec_id == AV_CODEC_ID_H264) {
        format.freeParameterSetId = freeParameterSetId(extradataOf(codec));
    }
    return format;
}

double CodedPictures::secondsPerTick() const { return av_q2d(track_->time_base); }

std::int64_t CodedPictures::ticks(double seconds) const {
    return start_ + std::llround(seconds / secondsPerTick());
}

double CodedPictures::seconds(std::int64_t ticks) const {
    return static_cast<double>(ticks - start_) * secondsPerTick();
}

void CodedPictures::seek(std::int64_t tick) {
    // Some containers are searched by decoding times, which lie before the times of showing, some guess, and
    // some land anywhere: go back further until the next key picture is early enough.
    for (double margin = 0.5;; margin *= 4) {
        const std::int64_t target = tick - std::llround(margin / secondsPerTick());
        const bool isFirst = target <= start_;
        const int result =
            isFirst ? avformat_seek_file(&media_.format(), track_->index, INT64_MIN, start_, INT64_MAX, 0)
                    : av_seek_frame(&media_.format(), track_->index, target, AVSEEK_FLAG_BACKWARD);
        if (result < 0) {
            throw failure(result);
        }
        ahead_.clear();
        auto found = next();
        while (!isFirst && found && !found->isKey()) {
            found = next();
        }
        if (isFirst || (found && found->pts <= tick)) {
            if (found) {
                ahead_.push_front(std::move(packet_));
            }
            return;
        }
    }
}

std::optional<CodedPicture> CodedPictures::next() {
    readAhead();
    if (ahead_.empty()) {
        return std::nullopt;
    }
    packet_ = std::move(ahead_.front());
    ahead_.pop_front();
    if (packet_->pts == AV_NOPTS_VALUE || packet_->dts == AV_NOPTS_VALUE || hasNewParameters(*packet_)) {
        throw failure(AVERROR_PATCHWELCOME);
    }
    return CodedPicture{packet_->pts, packet_->dts, packet_->duration, kindOf(*packet_),
                        (packet_->flags & AV_PKT_FLAG_DISCARD) == 0};
}

CodedPictures::PacketPointer CodedPictures::read() {
    PacketPointer packet(av_packet_alloc());
    if (!packet) {
        throw failure(AVERROR(ENOMEM));
    }
    while (media_.read(*packet)) {
        if (packet->stream_index == track_->index) {
            return packet;
        }
        av_packet_unref(packet.get());
    }
    return nullptr;
}

// Matroska states no decoding times, and libav can tell those of the first pictures behind a jump only from
// the ones that follow.
void CodedPictures::readAhead() {
    constexpr std::size_t longestReordering = 32;
    while (ahead_.empty() || (ahead_.back()->dts == AV_NOPTS_VALUE && ahead_.size() < longestReordering)) {
        PacketPointer packet = read();
        if (!packet) {
            return;
        }
        ahead_.push_back(std::move(packet));
    }
    for (std::size_t index = ahead_.size() - 1; index > 0; --index) {
        AVPacket& earlier = *ahead_[index - 1];
        const AVPacket& later = *ahead_[index];
        if (earlier.dts == AV_NOPTS_VALUE && later.dts != AV_NOPTS_VALUE) {
            earlier.dts = later.dts - std::max<std::int64_t>(1, earlier.duration);
        }
    }
}

CodedPicture::Kind CodedPictures::kindOf(const AVPacket& packet) const {
    using Kind = CodedPicture::Kind;
    if ((packet.flags & AV_PKT_FLAG_KEY) == 0) {
        return Kind::dependent;
    }
    const AVCodecParameters& codec = *track_->codecpar;
    const bool isHEVC = codec.codec_id == AV_CODEC_ID_HEVC;
    if (codec.codec_id != AV_CODEC_ID_H264 && !isHEVC) {
        return Kind::unsafeKey;
    }
    const Bytes data(packet.data, static_cast<std::size_t>(packet.size));
    for (const Bytes unit : nalUnits(data, nalLengthSize(extradataOf(codec), isHEVC))) {
        constexpr int idrOfH264 = 5;
        constexpr int idrWithLeading = 19;
        constexpr int idrWithoutLeading = 20;
        constexpr int cra = 21;
        const int type = isHEVC ? unit[0] >> 1U & 0x3F : unit[0] & 0x1F;
        if (isHEVC ? type == idrWithLeading || type == idrWithoutLeading : type == idrOfH264) {
            return Kind::entry;
        }
        if (isHEVC && type == cra) {
            return Kind::openEntry;
        }
    }
    return Kind::unsafeKey;
}

} // namespace corvanta
