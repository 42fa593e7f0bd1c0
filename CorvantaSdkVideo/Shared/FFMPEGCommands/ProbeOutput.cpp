#include <CorvantaSdkVideo/Shared/FFMPEGCommands/ProbeOutput.hpp>

#include <CorvantaSdkVideo/Shared/CheckedArithmetic.hpp>
#include <platform/MediaOpening.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace corvanta {

namespace {

const nlohmann::json* member(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() ? &*found : nullptr;
}

std::string text(const nlohmann::json& object, const char* key, const char* fallback = "") {
    const nlohmann::json* value = member(object, key);
    return value != nullptr && value->is_string() ? value->get<std::string>() : fallback;
}

std::optional<std::int64_t> optionalInteger(const nlohmann::json& object, const char* key) {
    const nlohmann::json* value = member(object, key);
    if (value == nullptr || !value->is_number_integer() ||
        (value->is_number_unsigned() &&
         value->get<std::uint64_t>() >
             static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))) {
        return std::nullopt;
    }
    return value->get<std::int64_t>();
}

std::int64_t integer(const nlohmann::json& object, const char* key) {
    return optionalInteger(object, key).value_or(0);
}

// Converts a whole text or gives 0; "inf", "nan" and what is too large for a double convert.
double toDouble(const std::string& text) {
    const char* begin = text.data();
    const char* const end = begin + text.size();
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        ++begin;
    }
    double value = 0;
    const auto [last, error] = std::from_chars(begin, end, value);
    if (last != end || error == std::errc::invalid_argument) {
        return 0;
    }
    // Out of range leaves the value alone; strtod tells whether it was too large or too small.
    return error == std::errc::result_out_of_range ? std::strtod(text.c_str(), nullptr) : value;
}

std::int64_t toInteger(const std::string& text) {
    const char* begin = text.data();
    const char* const end = begin + text.size();
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        ++begin;
    }
    std::int64_t value = 0;
    const auto [last, error] = std::from_chars(begin, end, value);
    return last == end && error == std::errc() ? value : 0;
}

double duration(const nlohmann::json& object) { return toDouble(text(object, "duration", "0")); }

// No file can state infinity: that is left to the conversion, which is fatal for a broken ffprobe.
bool hasImpossibleDuration(const nlohmann::json& object) {
    const double seconds = duration(object);
    return std::isfinite(seconds) && !isPossibleDuration(seconds);
}

bool isImpossibleTrack(const nlohmann::json& stream) {
    const std::string type = text(stream, "codec_type");
    return (type == "video" || type == "audio") && hasImpossibleDuration(stream);
}

bool isListOfObjects(const nlohmann::json* value) {
    return value != nullptr && value->is_array() &&
           std::ranges::all_of(*value, [](const nlohmann::json& entry) { return entry.is_object(); });
}

// The last entry that states a rotation wins.
std::int64_t rotation(const nlohmann::json& stream) {
    std::int64_t degrees = 0;
    if (const nlohmann::json* entries = member(stream, "side_data_list"); isListOfObjects(entries)) {
        for (const nlohmann::json& entry : *entries) {
            degrees = optionalInteger(entry, "rotation").value_or(degrees);
        }
    }
    return degrees;
}

bool isCover(const nlohmann::json& stream) {
    const nlohmann::json* disposition = member(stream, "disposition");
    return text(stream, "codec_type") == "video" && disposition != nullptr && disposition->is_object() &&
           integer(*disposition, "attached_pic") != 0;
}

std::vector<std::int64_t> coverIndexes(const nlohmann::json& streams) {
    std::vector<std::int64_t> indexes;
    for (const nlohmann::json& stream : streams) {
        if (isCover(stream)) {
            indexes.push_back(integer(stream, "index"));
        }
    }
    return indexes;
}

CorvantaSdkVideoPictureColor color(const nlohmann::json& stream) {
    const auto told = [&stream](const char* key) {
        const std::string value = text(stream, key);
        return value == "unknown" ? "" : value;
    };
    return {told("color_range"), told("color_primaries"), told("color_transfer"), told("color_space")};
}

std::vector<CorvantaSdkVideoTrackInformation> mapVideoTracks(const nlohmann::json& streams) {
    std::vector<CorvantaSdkVideoTrackInformation> tracks;
    for (const nlohmann::json& stream : streams) {
        if (text(stream, "codec_type") == "video" && !isCover(stream)) {
            tracks.emplace_back(integer(stream, "index"), integer(stream, "width"), integer(stream, "height"),
                                text(stream, "codec_name"), text(stream, "codec_tag_string"),
                                text(stream, "pix_fmt"), toInteger(text(stream, "bit_rate", "0")),
                                text(stream, "r_frame_rate"), rotation(stream),
                                millisecondsFromSeconds(duration(stream)));
            tracks.back().color = color(stream);
        }
    }
    return tracks;
}

std::vector<CorvantaSdkVideoAudioTrackInformation> mapAudioTracks(const nlohmann::json& streams) {
    std::vector<CorvantaSdkVideoAudioTrackInformation> tracks;
    for (const nlohmann::json& stream : streams) {
        if (text(stream, "codec_type") == "audio") {
            tracks.push_back({.index = integer(stream, "index"),
                              .codec = text(stream, "codec_name"),
                              .codecTag = text(stream, "codec_tag_string"),
                              .sampleFormat = text(stream, "sample_fmt"),
                              .bitRate = toInteger(text(stream, "bit_rate", "0")),
                              .sampleRate = toInteger(text(stream, "sample_rate", "0")),
                              .channels = integer(stream, "channels"),
                              .channelLayout = text(stream, "channel_layout"),
                              .durationMillis = millisecondsFromSeconds(duration(stream))});
        }
    }
    return tracks;
}

} // namespace

std::optional<ProbeOutput> parseProbeOutput(std::string_view output) {
    const nlohmann::json root = nlohmann::json::parse(output, nullptr, false);
    if (!root.is_object()) {
        return std::nullopt;
    }
    const nlohmann::json* format = member(root, "format");
    const nlohmann::json* streams = member(root, "streams");
    if (format == nullptr || !format->is_object() || !isListOfObjects(streams)) {
        return std::nullopt;
    }
    if (hasImpossibleDuration(*format) || std::ranges::any_of(*streams, isImpossibleTrack)) {
        return std::nullopt;
    }
    ProbeOutput parsed;
    parsed.size = toInteger(text(*format, "size", "0"));
    parsed.duration = duration(*format);
    parsed.format = text(*format, "format_name");
    parsed.videos = mapVideoTracks(*streams);
    parsed.audios = mapAudioTracks(*streams);
    parsed.covers = coverIndexes(*streams);
    return parsed;
}

std::int64_t millisecondsFromSeconds(double seconds) { return truncatedToInteger(seconds * 1000.0); }

} // namespace corvanta
