#include <CorvantaSdkVideo/Commands/VideoOperationData.hpp>

#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>

namespace corvanta {

namespace {

using json = nlohmann::ordered_json;

void putOptional(json& object, const char* key, std::optional<std::int64_t> value) {
    if (value) {
        object[key] = *value;
    }
}

// A whole number is written without a fraction.
void putOptional(json& object, const char* key, std::optional<double> value) {
    constexpr double exactlyCounted = 1LL << 53;
    if (value && std::trunc(*value) == *value && std::abs(*value) <= exactlyCounted) {
        object[key] = static_cast<std::int64_t>(*value);
    } else if (value) {
        object[key] = *value;
    }
}

json toJson(std::int64_t entry) { return entry; }

json toJson(const CorvantaSdkVideoMergeMediaEntry& entry) {
    return {{"fileIndex", entry.fileIndex}, {"entryIndex", entry.entryIndex}};
}

template <typename Value>
json toJson(const std::vector<Value>& values);

json toJson(const CorvantaSdkVideoMergeVideoTrack& track) {
    json object = {{"tracks", toJson(track.tracks)}};
    putOptional(object, "width", track.width);
    putOptional(object, "height", track.height);
    return object;
}

json toJson(const CorvantaSdkVideoMergeAudioTrack& track) { return {{"tracks", toJson(track.tracks)}}; }

json toJson(const CorvantaSdkVideoEncodeVideoEntry& entry) {
    json object = {{"entryIndex", entry.entryIndex}};
    putOptional(object, "width", entry.width);
    putOptional(object, "height", entry.height);
    return object;
}

template <typename Value>
json toJson(const std::vector<Value>& values) {
    json list = json::array();
    for (const Value& value : values) {
        list.push_back(toJson(value));
    }
    return list;
}

bool isRepresentable(const std::optional<double>& size) { return !size || std::isfinite(*size); }

template <typename Serializable>
std::optional<std::string> encoded(const Serializable& data) {
    if (!isRepresentable(data.width) || !isRepresentable(data.height)) {
        return std::nullopt;
    }
    json object = json::object();
    putOptional(object, "width", data.width);
    putOptional(object, "height", data.height);
    object["videoTracks"] = toJson(data.videoTracks);
    object["audioTracks"] = toJson(data.audioTracks);
    object["framesRate"] = data.framesRate;
    return object.dump();
}

// The readers throw json::exception for a value that is missing or of another type.
std::int64_t readInteger(const json& value) {
    const bool isTooLarge =
        value.is_number_unsigned() && !std::in_range<std::int64_t>(value.get<std::uint64_t>());
    if (!value.is_number_integer() || isTooLarge) {
        throw json::type_error::create(302, "no integer", &value);
    }
    return value.get<std::int64_t>();
}

std::optional<std::int64_t> readOptionalInteger(const json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? std::nullopt : std::optional(readInteger(*found));
}

std::optional<double> readOptionalNumber(const json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || found->is_null()) {
        return std::nullopt;
    }
    if (!found->is_number()) {
        throw json::type_error::create(302, "no number", &*found);
    }
    return found->get<double>();
}

void read(const json& value, std::int64_t& entry) { entry = readInteger(value); }

void read(const json& value, CorvantaSdkVideoMergeMediaEntry& entry) {
    entry = {readInteger(value.at("fileIndex")), readInteger(value.at("entryIndex"))};
}

template <typename Value>
void read(const json& list, std::vector<Value>& values);

void read(const json& value, CorvantaSdkVideoMergeVideoTrack& track) {
    read(value.at("tracks"), track.tracks);
    track.width = readOptionalInteger(value, "width");
    track.height = readOptionalInteger(value, "height");
}

void read(const json& value, CorvantaSdkVideoMergeAudioTrack& track) {
    read(value.at("tracks"), track.tracks);
}

void read(const json& value, CorvantaSdkVideoEncodeVideoEntry& entry) {
    entry = {readInteger(value.at("entryIndex")), readOptionalInteger(value, "width"),
             readOptionalInteger(value, "height")};
}

template <typename Value>
void read(const json& list, std::vector<Value>& values) {
    for (const json& entry : list.get_ref<const json::array_t&>()) {
        read(entry, values.emplace_back());
    }
}

template <typename Serializable>
std::optional<Serializable> decoded(const std::optional<std::string>& text) {
    if (!text) {
        return std::nullopt;
    }
    try {
        const json object = json::parse(*text);
        Serializable data;
        data.framesRate = object.at("framesRate").get_ref<const std::string&>();
        data.width = readOptionalNumber(object, "width");
        data.height = readOptionalNumber(object, "height");
        read(object.at("videoTracks"), data.videoTracks);
        read(object.at("audioTracks"), data.audioTracks);
        return data;
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

template <typename Serializable, typename Data>
Serializable serialized(const Data& data) {
    return {data.width, data.height, data.videoTracks, data.audioTracks,
            std::string(data.framesRate.rawValue())};
}

} // namespace

VideoMergeData::SerializableMergeData VideoMergeData::serializable() const {
    return serialized<SerializableMergeData>(*this);
}

VideoEncodingData::SerializableEncodingData VideoEncodingData::serializable() const {
    return serialized<SerializableEncodingData>(*this);
}

std::optional<std::string> jsonRepresentation(const VideoMergeData::SerializableMergeData& data) {
    return encoded(data);
}

std::optional<std::string> jsonRepresentation(const VideoEncodingData::SerializableEncodingData& data) {
    return encoded(data);
}

template <>
std::optional<VideoMergeData::SerializableMergeData> decode(const std::optional<std::string>& json) {
    return decoded<VideoMergeData::SerializableMergeData>(json);
}

template <>
std::optional<VideoEncodingData::SerializableEncodingData> decode(const std::optional<std::string>& json) {
    return decoded<VideoEncodingData::SerializableEncodingData>(json);
}

} // namespace corvanta
