#include <CorvantaSdkVideo/Commands/VideoOperationData.hpp>

#include <CorvantaSdkVideo/Commands/Encoding/EncodingJSON.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
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

// A whole number is written without a fraction. Throws json::exception for one that isn't finite.
void putOptional(json& object, const char* key, std::optional<double> value) {
    constexpr double exactlyCounted = 1LL << 53;
    if (value && !std::isfinite(*value)) {
        throw json::other_error::create(501, "no finite number", &object);
    }
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

template <typename Serializable>
json storedForm(const Serializable& data) {
    json object = json::object();
    putOptional(object, "width", data.width);
    putOptional(object, "height", data.height);
    object["videoTracks"] = toJson(data.videoTracks);
    object["audioTracks"] = toJson(data.audioTracks);
    object["framesRate"] = data.framesRate;
    if (data.encoding) {
        object["encoding"] = toJson(*data.encoding);
    }
    return object;
}

json toJson(const VideoMergeData::SerializableMergeData& data) {
    json object = storedForm(data);
    if (data.isJoin) {
        object["join"] = true;
    }
    return object;
}
json toJson(const VideoConcatData::SerializableConcatData& data) {
    json object = json::object();
    if (data.joinExtension) {
        object["join"] = {{"fileExtension", *data.joinExtension}};
    }
    return object;
}
json toJson(const VideoEncodingData::SerializableEncodingData& data) { return storedForm(data); }

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
void readStoredForm(const json& object, Serializable& data) {
    data.framesRate = object.at("framesRate").get_ref<const std::string&>();
    data.width = readOptionalNumber(object, "width");
    data.height = readOptionalNumber(object, "height");
    read(object.at("videoTracks"), data.videoTracks);
    read(object.at("audioTracks"), data.audioTracks);
    if (const auto found = object.find("encoding"); found != object.end() && !found->is_null()) {
        data.encoding = encodingFrom(*found);
    }
}

void read(const json& object, VideoMergeData::SerializableMergeData& data) {
    readStoredForm(object, data);
    if (const auto found = object.find("join"); found != object.end() && !found->is_null()) {
        data.isJoin = found->get<bool>();
    }
}

// It becomes part of a path.
bool isExtension(const std::string& text) {
    constexpr std::size_t longest = 8;
    return !text.empty() && text.size() <= longest &&
           std::ranges::all_of(text, [](unsigned char character) { return std::isalnum(character) != 0; });
}

void read(const json& object, VideoConcatData::SerializableConcatData& data) {
    const auto found = object.find("join");
    if (found == object.end() || found->is_null()) {
        return;
    }
    const auto& extension = found->at("fileExtension").get_ref<const std::string&>();
    if (!isExtension(extension)) {
        throw json::other_error::create(501, "no extension", &*found);
    }
    data.joinExtension = extension;
}

void read(const json& object, VideoEncodingData::SerializableEncodingData& data) {
    readStoredForm(object, data);
}

// All that merges and encodes have in common, one way and back.
template <typename Serializable, typename Data>
Serializable serialized(const Data& data) {
    return {data.width,
            data.height,
            data.videoTracks,
            data.audioTracks,
            std::string(data.framesRate.rawValue()),
            data.encoding};
}

// False for a rate that there is none of.
template <typename Data, typename Serializable>
bool restore(Serializable stored, Data& data) {
    const auto rate = CorvantaSdkVideoFrameRate::fromRawValue(stored.framesRate);
    if (!rate) {
        return false;
    }
    data.width = stored.width;
    data.height = stored.height;
    data.videoTracks = std::move(stored.videoTracks);
    data.audioTracks = std::move(stored.audioTracks);
    data.framesRate = *rate;
    data.encoding = std::move(stored.encoding);
    return true;
}

} // namespace

VideoMergeData::SerializableMergeData VideoMergeData::serializable() const {
    auto data = serialized<SerializableMergeData>(*this);
    data.isJoin = isJoin;
    return data;
}

VideoEncodingData::SerializableEncodingData VideoEncodingData::serializable() const {
    return serialized<SerializableEncodingData>(*this);
}

template <typename Encodable>
std::optional<std::string> jsonRepresentation(const Encodable& value) {
    try {
        return toJson(value).dump();
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

template <typename Decodable>
std::optional<Decodable> decode(const std::optional<std::string>& text) {
    if (!text) {
        return std::nullopt;
    }
    try {
        Decodable value;
        read(json::parse(*text), value);
        return value;
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

// What can be written and read.
template std::optional<std::string> jsonRepresentation(const CorvantaSdkVideoMergeMediaEntry&);
template std::optional<CorvantaSdkVideoMergeMediaEntry> decode(const std::optional<std::string>&);
template std::optional<std::string> jsonRepresentation(const CorvantaSdkVideoMergeVideoTrack&);
template std::optional<CorvantaSdkVideoMergeVideoTrack> decode(const std::optional<std::string>&);
template std::optional<std::string> jsonRepresentation(const CorvantaSdkVideoMergeAudioTrack&);
template std::optional<CorvantaSdkVideoMergeAudioTrack> decode(const std::optional<std::string>&);
template std::optional<std::string> jsonRepresentation(const CorvantaSdkVideoEncodeVideoEntry&);
template std::optional<CorvantaSdkVideoEncodeVideoEntry> decode(const std::optional<std::string>&);
template std::optional<std::string> jsonRepresentation(const VideoConcatData::SerializableConcatData&);
template std::optional<VideoConcatData::SerializableConcatData> decode(const std::optional<std::string>&);
template std::optional<std::string> jsonRepresentation(const VideoMergeData::SerializableMergeData&);
template std::optional<VideoMergeData::SerializableMergeData> decode(const std::optional<std::string>&);
template std::optional<std::string> jsonRepresentation(const VideoEncodingData::SerializableEncodingData&);
template std::optional<VideoEncodingData::SerializableEncodingData> decode(const std::optional<std::string>&);

VideoConcatData VideoConcatData::fromStored(std::vector<URL> videos, const std::optional<std::string>& json) {
    auto stored = decode<SerializableConcatData>(json);
    return {std::move(videos), stored ? std::move(stored->joinExtension) : std::nullopt};
}

std::optional<VideoMergeData> VideoMergeData::fromStored(std::vector<URL> videos,
                                                         const std::optional<std::string>& json) {
    const auto stored = decode<SerializableMergeData>(json);
    VideoMergeData data;
    if (!stored || !restore(*stored, data)) {
        return std::nullopt;
    }
    data.videos = std::move(videos);
    data.isJoin = stored->isJoin;
    return data;
}

std::optional<VideoEncodingData> VideoEncodingData::fromStored(URL inputFile,
                                                               const std::optional<std::string>& json) {
    const auto stored = decode<SerializableEncodingData>(json);
    VideoEncodingData data{.inputFileURL = std::move(inputFile)};
    if (!stored || !restore(*stored, data)) {
        return std::nullopt;
    }
    return data;
}

} // namespace corvanta
