#include <CorvantaSdkVideo/Commands/Encoding/EncodingJSON.hpp>

#include <utility>

namespace corvanta {

namespace {

using json = nlohmann::ordered_json;
using Encoding = CorvantaSdkVideoEncoding;

template <typename Choice>
void put(json& object, const char* key, std::optional<Choice> value) {
    if (value) {
        object[key] = name(*value);
    }
}

void put(json& object, const char* key, std::optional<std::int64_t> value) {
    if (value) {
        object[key] = *value;
    }
}

void readSetting(const json& value, std::int64_t& number) {
    const bool isTooLarge =
        value.is_number_unsigned() && !std::in_range<std::int64_t>(value.get<std::uint64_t>());
    if (!value.is_number_integer() || isTooLarge) {
        throw json::type_error::create(302, "no integer", &value);
    }
    number = value.get<std::int64_t>();
}

void readSetting(const json& value, bool& flag) { flag = value.get<bool>(); }

void readSetting(const json& value, std::vector<std::string>& texts) {
    for (const json& text : value.get_ref<const json::array_t&>()) {
        texts.push_back(text.get<std::string>());
    }
}

template <typename Choice>
void readSetting(const json& value, Choice& choice) {
    const auto named = choiceNamed<Choice>(value.get_ref<const std::string&>());
    if (!named) {
        throw json::other_error::create(501, "an unknown name", &value);
    }
    choice = *named;
}

template <typename Value>
void readSetting(const json& value, std::optional<Value>& optional) {
    readSetting(value, optional.emplace());
}

template <typename Value>
void readIfThere(const json& object, const char* key, Value& value) {
    if (const auto found = object.find(key); found != object.end() && !found->is_null()) {
        readSetting(*found, value);
    }
}

} // namespace

json toJson(const Encoding& encoding) {
    json object = json::object();
    put(object, "codec", encoding.codec);
    put(object, "quality", encoding.quality);
    put(object, "crf", encoding.crf);
    put(object, "preset", encoding.preset);
    put(object, "audioBitRate", encoding.audioBitRate);
    put(object, "audioSampleRate", encoding.audioSampleRate);
    put(object, "audioChannels", encoding.audioChannels);
    if (encoding.faststart) {
        object["faststart"] = true;
    }
    if (!encoding.encoders.empty()) {
        object["encoders"] = encoding.encoders;
    }
    return object;
}

Encoding encodingFrom(const json& object) {
    object.get_ref<const json::object_t&>();
    Encoding encoding;
    readIfThere(object, "codec", encoding.codec);
    readIfThere(object, "quality", encoding.quality);
    readIfThere(object, "crf", encoding.crf);
    readIfThere(object, "preset", encoding.preset);
    readIfThere(object, "audioBitRate", encoding.audioBitRate);
    readIfThere(object, "audioSampleRate", encoding.audioSampleRate);
    readIfThere(object, "audioChannels", encoding.audioChannels);
    readIfThere(object, "faststart", encoding.faststart);
    readIfThere(object, "encoders", encoding.encoders);
    return encoding;
}

} // namespace corvanta
