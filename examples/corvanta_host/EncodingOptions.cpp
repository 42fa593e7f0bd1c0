#include "EncodingOptions.hpp"

#include "Failures.hpp"
#include "Words.hpp"

#include <charconv>
#include <string_view>

using namespace corvanta;

namespace {

template <typename Names>
std::vector<std::string> wordsOf(const Names& names) {
    return {names.begin(), names.end()};
}

template <typename Choice>
void addChoice(CLI::App& command, const std::string& name, std::string& value,
               const std::string& description) {
    command.add_option(name, value, description)->check(oneOf(wordsOf(choiceNames<Choice>())));
}

template <typename Choice>
std::optional<Choice> chosenOf(const std::string& text) {
    return text.empty() ? std::nullopt : choiceNamed<Choice>(text);
}

// "192000", "192k" or "1M"
std::optional<std::int64_t> bitRateFrom(const std::string& text) {
    if (text.empty()) {
        return std::nullopt;
    }
    constexpr std::int64_t most = 1'000'000'000;
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const std::string_view unit(end, text.data() + text.size());
    const std::int64_t factor = unit.empty()                 ? 1
                                : unit == "k" || unit == "K" ? 1'000
                                : unit == "M"                ? 1'000'000
                                                             : 0;
    if (error != std::errc() || factor == 0 || number > most) {
        throw UsageError("--audio-bitrate takes bits per second such as 192k, not \"" + text + '"');
    }
    return number * factor;
}

} // namespace

EncodingOptions::EncodingOptions(CLI::App& command) {
    addChoice<CorvantaSdkVideoEncoding::Codec>(
        command, "--codec", codec_,
        "The picture's codec; h264 if another option says something of the picture. With no option of "
        "encoding at all: mpeg4 at ffmpeg's own rate, fast and coarse");
    addChoice<CorvantaSdkVideoEncoding::Quality>(
        command, "--quality", quality_,
        "How much of the picture is kept; medium, unless said. high differs from the source only side by "
        "side");
    command.add_option("--crf", encoding_.crf,
                       "Instead of --quality, the codec's own number, lower is better: 0 to 51 for h264 and "
                       "hevc, 1 to 63 for av1, 1 to 31 for mpeg4");
    addChoice<CorvantaSdkVideoEncoding::Preset>(command, "--preset", preset_,
                                                "Time spent on a smaller file; medium, unless said");
    command
        .add_option("--encoder", encoding_.encoders,
                    "An encoder of the codec to try, by ffmpeg's name (h264_nvenc, libx264); can be "
                    "repeated: if one in hardware fails, the next is taken")
        ->type_name("ENCODER")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command.add_flag("--faststart", encoding_.faststart,
                     "Put the index first, so that players on the net start at once");
    command.add_option("--audio-bitrate", audioBitRate_, "Bits per second of the sound: 192k");
    command.add_option("--audio-rate", encoding_.audioSampleRate,
                       "Sample rate of the sound in Hz, not above the inputs'; 44100, unless said");
    command.add_option("--audio-channels", encoding_.audioChannels,
                       "1, 2, 6 (5.1) or 8 (7.1), not more than the inputs have; 2, unless said");
}

std::optional<CorvantaSdkVideoEncoding> EncodingOptions::chosen() const {
    CorvantaSdkVideoEncoding encoding = encoding_;
    encoding.codec = chosenOf<CorvantaSdkVideoEncoding::Codec>(codec_);
    encoding.quality = chosenOf<CorvantaSdkVideoEncoding::Quality>(quality_);
    encoding.preset = chosenOf<CorvantaSdkVideoEncoding::Preset>(preset_);
    encoding.audioBitRate = bitRateFrom(audioBitRate_);
    if (encoding == CorvantaSdkVideoEncoding{}) {
        return std::nullopt;
    }
    if (const auto flaw = encoding.flaw()) {
        throw UsageError(*flaw);
    }
    return encoding;
}

void requireEncodable(const CorvantaSdkVideoEncoding& encoding,
                      const std::vector<CorvantaSdkVideoInformation>& files) {
    if (const auto obstacle = obstacleToEncoding(encoding, files)) {
        throw Refusal("cannotEncode", *obstacle);
    }
}
