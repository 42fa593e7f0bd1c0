#include <CorvantaSdkVideo/CorvantaSdkVideoEncoding.hpp>

#include <CorvantaSdkVideo/Commands/Encoding/Encoders.hpp>

#include <boost/algorithm/string/join.hpp>

#include <algorithm>
#include <array>
#include <span>

namespace corvanta {

namespace {

using Encoding = CorvantaSdkVideoEncoding;

template <typename Choice>
struct Names;

// In the order of the cases.
template <>
struct Names<Encoding::Codec> {
    static constexpr auto all = std::to_array<std::string_view>({"mpeg4", "h264", "hevc", "av1"});
};
template <>
struct Names<Encoding::Quality> {
    static constexpr auto all = std::to_array<std::string_view>({"low", "medium", "high", "best"});
};
template <>
struct Names<Encoding::Preset> {
    static constexpr auto all = std::to_array<std::string_view>(
        {"ultrafast", "superfast", "veryfast", "faster", "fast", "medium", "slow", "slower", "veryslow"});
};

template <typename Choice>
std::string_view nameOf(Choice choice) {
    return Names<Choice>::all.at(static_cast<std::size_t>(choice));
}

struct Range {
    std::int64_t least;
    std::int64_t most;
};

std::optional<std::string> outside(const std::string& what, std::optional<std::int64_t> value, Range range) {
    if (!value || (*value >= range.least && *value <= range.most)) {
        return std::nullopt;
    }
    return what + " goes from " + std::to_string(range.least) + " to " + std::to_string(range.most) +
           ", not " + std::to_string(*value);
}

std::optional<std::string> noneOf(const std::string& what, std::optional<std::int64_t> value,
                                  std::span<const std::int64_t> allowed) {
    if (!value || std::ranges::find(allowed, *value) != allowed.end()) {
        return std::nullopt;
    }
    std::string list;
    for (const std::int64_t one : allowed) {
        list += (list.empty() ? "" : ", ") + std::to_string(one);
    }
    return what + " is one of " + list + ", not " + std::to_string(*value);
}

Range crfRange(Encoding::Codec codec) {
    switch (codec) {
    case Encoding::Codec::mpeg4:
        return {1, 31};
    case Encoding::Codec::av1:
        return {1, 63};
    case Encoding::Codec::h264:
    case Encoding::Codec::hevc:
        break;
    }
    return {0, 51};
}

constexpr auto sampleRates = std::to_array<std::int64_t>(
    {96'000, 88'200, 64'000, 48'000, 44'100, 32'000, 24'000, 22'050, 16'000, 12'000, 11'025, 8'000, 7'350});
constexpr auto channelCounts = std::to_array<std::int64_t>({1, 2, 6, 8});

} // namespace

bool CorvantaSdkVideoEncoding::concernsPicture() const {
    return codec || quality || crf || preset || !encoders.empty();
}

std::optional<CorvantaSdkVideoEncoding::Codec> CorvantaSdkVideoEncoding::pictureCodec() const {
    return concernsPicture() ? std::optional(codec.value_or(Codec::h264)) : std::nullopt;
}

std::optional<std::string> CorvantaSdkVideoEncoding::flaw() const {
    if (quality && crf) {
        return "quality and crf say the same: only one of them can be set";
    }
    if (const auto picture = pictureCodec()) {
        const std::string codecName(name(*picture));
        if (auto flaw = outside("the crf of " + codecName, crf, crfRange(*picture))) {
            return flaw;
        }
        const auto known = knownEncoders(*picture);
        for (const std::string& encoder : encoders) {
            if (std::ranges::find(known, encoder) == known.end()) {
                return "an encoder of " + codecName + " is one of " + boost::algorithm::join(known, ", ") +
                       ", not " + encoder;
            }
        }
    }
    if (auto flaw = outside("the sound's bit rate", audioBitRate, {8'000, 1'000'000})) {
        return flaw;
    }
    if (auto flaw = noneOf("the sound's sample rate", audioSampleRate, sampleRates)) {
        return flaw;
    }
    return noneOf("the number of the sound's channels", audioChannels, channelCounts);
}

std::vector<std::string> knownEncoders(Encoding::Codec codec) {
    std::vector<std::string> names;
    for (const Encoder* encoder : encodersOf(codec)) {
        names.emplace_back(encoder->name);
    }
    return names;
}

std::string_view name(Encoding::Codec codec) { return nameOf(codec); }
std::string_view name(Encoding::Quality quality) { return nameOf(quality); }
std::string_view name(Encoding::Preset preset) { return nameOf(preset); }

template <typename Choice>
std::optional<Choice> choiceNamed(std::string_view name) {
    const auto& names = Names<Choice>::all;
    const auto found = std::ranges::find(names, name);
    return found == names.end() ? std::nullopt : std::optional(static_cast<Choice>(found - names.begin()));
}

template <typename Choice>
std::vector<std::string> choiceNames() {
    return {Names<Choice>::all.begin(), Names<Choice>::all.end()};
}

template std::optional<Encoding::Codec> choiceNamed(std::string_view);
template std::optional<Encoding::Quality> choiceNamed(std::string_view);
template std::optional<Encoding::Preset> choiceNamed(std::string_view);
template std::vector<std::string> choiceNames<Encoding::Codec>();
template std::vector<std::string> choiceNames<Encoding::Quality>();
template std::vector<std::string> choiceNames<Encoding::Preset>();

} // namespace corvanta
