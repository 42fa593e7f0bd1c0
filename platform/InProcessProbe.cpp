#include <platform/InProcessProbe.hpp>

#include <platform/Errors.hpp>
#include <platform/MediaOpening.hpp>
#include <platform/MediaTracks.hpp>
#include <platform/ProbeMemory.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
}

namespace corvanta {

namespace {

using Json = nlohmann::ordered_json;

// A file that takes longer is left to a process of its own.
constexpr std::chrono::seconds patience{5};

constexpr AVRational microsecond = {1, AV_TIME_BASE};

struct FreeCodec {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
using Codec = std::unique_ptr<AVCodecContext, FreeCodec>;

std::span<AVStream*> streamsOf(const AVFormatContext& format) { return {format.streams, format.nb_streams}; }

// Its size may be unknown because it passes the bound.
bool isTooLarge(const AVStream* stream) {
    const AVCodecParameters& coded = *stream->codecpar;
    const std::int64_t pixels = std::int64_t{coded.width} * coded.height;
    return coded.codec_type == AVMEDIA_TYPE_VIDEO && (pixels <= 0 || pixels > OpenMedia::mostPixels);
}

// ffprobe opens all decoders, and gives up if one refuses. Null where there is none.
Codec openedDecoder(const AVStream& stream) {
    Codec codec;
    if (const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id)) {
        codec.reset(avcodec_alloc_context3(decoder));
        if (codec == nullptr || avcodec_parameters_to_context(codec.get(), stream.codecpar) < 0) {
            throw std::bad_alloc();
        }
        codec->pkt_timebase = stream.time_base;
        if (const int result = avcodec_open2(codec.get(), decoder, nullptr); result < 0) {
            throw PlatformError("InProcessProbe", result);
        }
    }
    return codec;
}

std::string fraction(AVRational value, char separator) {
    return std::to_string(value.num) + separator + std::to_string(value.den);
}

std::string hexadecimal(const char* form, unsigned value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), form, value);
    return text.data();
}

// An unknown value is left out.
void put(Json& object, const char* key, const char* text) {
    if (text != nullptr) {
        object[key] = text;
    }
}

void putTime(Json& object, const char* key, std::int64_t value, AVRational base) {
    if (value != AV_NOPTS_VALUE) {
        object[key] = std::to_string(static_cast<double>(value) * av_q2d(base));
    }
}

void putIfPositive(Json& object, const char* key, std::int64_t value) {
    if (value > 0) {
        object[key] = std::to_string(value);
    }
}

void putName(Json& object, const char* key, const char* name, bool isKnown) {
    put(object, key, isKnown ? name : nullptr);
}

void putTags(Json& object, const AVDictionary* dictionary) {
    for (const AVDictionaryEntry* tag = nullptr;
         (tag = av_dict_get(dictionary, "", tag, AV_DICT_IGNORE_SUFFIX)) != nullptr;) {
        object["tags"][tag->key] = tag->value;
    }
}

void putPicture(Json& object, AVFormatContext& format, AVStream& stream, const AVCodecContext* codec) {
    const AVCodecParameters& coded = *stream.codecpar;
    object["width"] = coded.width;
    object["height"] = coded.height;
    if (codec != nullptr) {
        object["coded_width"] = codec->coded_width;
        object["coded_height"] = codec->coded_height;
        object["closed_captions"] = (codec->properties & FF_CODEC_PROPERTY_CLOSED_CAPTIONS) != 0 ? 1 : 0;
        object["film_grain"] = (codec->properties & FF_CODEC_PROPERTY_FILM_GRAIN) != 0 ? 1 : 0;
    }
    object["has_b_frames"] = coded.video_delay;
    if (const AVRational pixel = av_guess_sample_aspect_ratio(&format, &stream, nullptr); pixel.num != 0) {
        AVRational display;
        av_reduce(&display.num, &display.den, std::int64_t{coded.width} * pixel.num,
                  std::int64_t{coded.height} * pixel.den, std::int64_t{1024} * 1024);
        object["sample_aspect_ratio"] = fraction(pixel, ':');
        object["display_aspect_ratio"] = fraction(display, ':');
    }
    put(object, "pix_fmt", av_get_pix_fmt_name(static_cast<AVPixelFormat>(coded.format)));
    object["level"] = coded.level;
    putName(object, "color_range", av_color_range_name(coded.color_range),
            coded.color_range != AVCOL_RANGE_UNSPECIFIED);
    putName(object, "color_space", av_color_space_name(coded.color_space),
            coded.color_space != AVCOL_SPC_UNSPECIFIED);
    putName(object, "color_transfer", av_color_transfer_name(coded.color_trc),
            coded.color_trc != AVCOL_TRC_UNSPECIFIED);
    putName(object, "color_primaries", av_color_primaries_name(coded.color_primaries),
            coded.color_primaries != AVCOL_PRI_UNSPECIFIED);
    putName(object, "chroma_location", av_chroma_location_name(coded.chroma_location),
            coded.chroma_location != AVCHROMA_LOC_UNSPECIFIED);
    if (coded.field_order != AV_FIELD_UNKNOWN) {
        constexpr std::array<const char*, 6> orders = {"unknown", "progressive", "tt", "bb", "tb", "bt"};
        object["field_order"] = orders.at(static_cast<std::size_t>(coded.field_order));
    }
    if (codec != nullptr) {
        object["refs"] = codec->refs;
    }
}

void putSound(Json& object, const AVCodecParameters& coded) {
    put(object, "sample_fmt", av_get_sample_fmt_name(static_cast<AVSampleFormat>(coded.format)));
    object["sample_rate"] = std::to_string(coded.sample_rate);
    object["channels"] = coded.ch_layout.nb_channels;
    if (coded.ch_layout.order != AV_CHANNEL_ORDER_UNSPEC) {
        std::array<char, 128> layout{};
        av_channel_layout_describe(&coded.ch_layout, layout.data(), layout.size());
        object["channel_layout"] = layout.data();
    }
    object["bits_per_sample"] = av_get_bits_per_sample(coded.codec_id);
}

Json sideData(const AVPacketSideData& data) {
    Json object;
    const char* name = av_packet_side_data_name(data.type);
    object["side_data_type"] = name != nullptr ? name : "unknown";
    if (data.type == AV_PKT_DATA_DISPLAYMATRIX && data.size >= 9 * sizeof(std::int32_t)) {
        const double rotation = av_display_rotation_get(reinterpret_cast<const std::int32_t*>(data.data));
        object["rotation"] = std::isnan(rotation) ? 0 : static_cast<int>(rotation);
    }
    return object;
}

Json dispositionOf(const AVStream& stream) {
    Json object;
    for (unsigned bit = 1; bit != 0; bit <<= 1) {
        if (const char* name = av_disposition_to_string(static_cast<int>(bit))) {
            object[name] = (static_cast<unsigned>(stream.disposition) & bit) != 0 ? 1 : 0;
        }
    }
    return object;
}

Json described(AVFormatContext& format, AVStream& stream, const AVCodecContext* codec) {
    const AVCodecParameters& coded = *stream.codecpar;
    Json object;
    object["index"] = stream.index;
    if (const AVCodecDescriptor* descriptor = avcodec_descriptor_get(coded.codec_id)) {
        object["codec_name"] = descriptor->name;
        object["codec_long_name"] = descriptor->long_name != nullptr ? descriptor->long_name : "unknown";
    }
    if (const char* profile = avcodec_profile_name(coded.codec_id, coded.profile)) {
        object["profile"] = profile;
    } else if (coded.profile != FF_PROFILE_UNKNOWN) {
        object["profile"] = std::to_string(coded.profile);
    }
    put(object, "codec_type", av_get_media_type_string(coded.codec_type));
    std::array<char, AV_FOURCC_MAX_STRING_SIZE> tag{};
    object["codec_tag_string"] = av_fourcc_make_string(tag.data(), coded.codec_tag);
    object["codec_tag"] = hexadecimal("0x%04x", coded.codec_tag);
    if (coded.codec_type == AVMEDIA_TYPE_VIDEO) {
        putPicture(object, format, stream, codec);
    } else if (coded.codec_type == AVMEDIA_TYPE_AUDIO) {
        putSound(object, coded);
    }
    if ((format.iformat->flags & AVFMT_SHOW_IDS) != 0) {
        object["id"] = hexadecimal("0x%x", static_cast<unsigned>(stream.id));
    }
    object["r_frame_rate"] = fraction(stream.r_frame_rate, '/');
    object["avg_frame_rate"] = fraction(stream.avg_frame_rate, '/');
    object["time_base"] = fraction(stream.time_base, '/');
    if (stream.start_time != AV_NOPTS_VALUE) {
        object["start_pts"] = stream.start_time;
    }
    putTime(object, "start_time", stream.start_time, stream.time_base);
    if (stream.duration != AV_NOPTS_VALUE) {
        object["duration_ts"] = stream.duration;
    }
    putTime(object, "duration", stream.duration, stream.time_base);
    putIfPositive(object, "bit_rate", coded.bit_rate);
    if (codec != nullptr) {
        putIfPositive(object, "max_bit_rate", codec->rc_max_rate);
        putIfPositive(object, "bits_per_raw_sample", codec->bits_per_raw_sample);
    }
    putIfPositive(object, "nb_frames", stream.nb_frames);
    if (coded.extradata_size > 0) {
        object["extradata_size"] = coded.extradata_size;
    }
    object["disposition"] = dispositionOf(stream);
    putTags(object, stream.metadata);
    for (const AVPacketSideData& data :
         std::span(stream.side_data, static_cast<std::size_t>(stream.nb_side_data))) {
        object["side_data_list"].push_back(sideData(data));
    }
    return object;
}

Json described(AVFormatContext& format, const std::string& file) {
    Json object;
    object["filename"] = file;
    object["nb_streams"] = format.nb_streams;
    object["nb_programs"] = format.nb_programs;
    object["format_name"] = format.iformat->name;
    put(object, "format_long_name", format.iformat->long_name);
    putTime(object, "start_time", format.start_time, microsecond);
    putTime(object, "duration", format.duration, microsecond);
    if (const std::int64_t size = format.pb != nullptr ? avio_size(format.pb) : -1; size >= 0) {
        object["size"] = std::to_string(size);
    }
    putIfPositive(object, "bit_rate", format.bit_rate);
    object["probe_score"] = format.probe_score;
    putTags(object, format.metadata);
    return object;
}

// ffmpeg takes "file:" off, and the file's system reads further slashes as one.
std::string pathOf(const std::string& file) {
    return file.starts_with("file:") ? file.substr(std::strlen("file:")) : file;
}

ProbeAnswer answerFor(const std::string& file, const std::stop_token& stop) {
    OpenMedia media(pathOf(file), {.patience = patience, .stop = stop});
    AVFormatContext& format = media.format();
    ProbeAnswer answer;
    answer.displayTransform = displayTransform(format);
    media.analyse();
    if (!answer.displayTransform) {
        answer.displayTransform = displayTransform(format);
    }
    if (std::ranges::any_of(streamsOf(format), isTooLarge)) {
        throw PlatformError("InProcessProbe", AVERROR(EFBIG));
    }
    Json root;
    root["streams"] = Json::array();
    for (AVStream* stream : streamsOf(format)) {
        const Codec codec = openedDecoder(*stream);
        root["streams"].push_back(described(format, *stream, codec.get()));
    }
    root["format"] = described(format, file);
    answer.text = root.dump(4, ' ', false, Json::error_handler_t::replace);
    return answer;
}

} // namespace

std::optional<std::string> fileOfPlainProbe(const std::vector<std::string>& words) {
    constexpr std::array<std::string_view, 7> behindFile = {
        "-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-hide_banner"};
    if (words.size() != behindFile.size() + 2 || words[0] != "-i" ||
        !std::ranges::equal(std::span(words).subspan(2), behindFile)) {
        return std::nullopt;
    }
    const std::string& file = words[1];
    return file.starts_with("file:") || file.starts_with("/") ? std::optional(file) : std::nullopt;
}

std::optional<std::string> probeInProcess(const std::string& file, const std::stop_token& stop) {
    const auto before = stop.stop_requested() ? std::nullopt : settledState(pathOf(file));
    std::optional<ProbeMemory::Turn> turn;
    if (before) {
        turn.emplace(ProbeMemory::shared(), file, stop);
    }
    if (auto known = before ? ProbeMemory::shared().find(file, *before) : std::nullopt) {
        return std::move(known->text);
    }
    try {
        ProbeAnswer answer = answerFor(file, stop);
        if (before && settledState(pathOf(file)) == before) {
            ProbeMemory::shared().keep(file, *before, answer);
        }
        return std::move(answer.text);
    } catch (const std::exception&) {
        // ffprobe tells, in its own way, what is wrong with the file.
        return std::nullopt;
    }
}

void rememberProbe(const std::string& file, const std::stop_token& stop) {
    if (settledState(pathOf(file))) {
        probeInProcess(file, stop);
    }
}

bool isProbeRemembered(const std::string& file) {
    const auto state = settledState(pathOf(file));
    return state && ProbeMemory::shared().find(file, *state);
}

std::optional<AffineTransform> probedDisplayTransform(const std::string& path) {
    const auto state = settledState(path);
    return state ? ProbeMemory::shared().findDisplayTransform(*state) : std::nullopt;
}

} // namespace corvanta
