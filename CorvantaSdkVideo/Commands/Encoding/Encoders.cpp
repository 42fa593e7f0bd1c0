#include <CorvantaSdkVideo/Commands/Encoding/Encoders.hpp>

#include <algorithm>

namespace corvanta {

namespace {

using Codec = CorvantaSdkVideoEncoding::Codec;
using Device = Encoder::Device;
using Presets = std::array<std::string_view, 9>;

constexpr Presets ofX264{"ultrafast", "superfast", "veryfast", "faster",  "fast",
                         "medium",    "slow",      "slower",   "veryslow"};
constexpr Presets ofNvenc{"p1", "p1", "p2", "p3", "p3", "p4", "p5", "p6", "p7"};
constexpr Presets ofQsv{"veryfast", "veryfast", "veryfast", "faster",  "fast",
                        "medium",   "slow",     "slower",   "veryslow"};
constexpr Presets ofSvt{"12", "11", "10", "9", "8", "7", "5", "4", "3"};
constexpr Presets ofAom{"8", "8", "7", "6", "6", "5", "4", "3", "2"};

constexpr std::array<std::int64_t, 4> qualitiesOfMpeg4{8, 5, 3, 2};
constexpr std::array<std::int64_t, 4> qualitiesOfH264{28, 23, 19, 15};
constexpr std::array<std::int64_t, 4> qualitiesOfHevc{31, 26, 21, 17};
constexpr std::array<std::int64_t, 4> qualitiesOfAv1{48, 38, 29, 20};

// Apple's players know HEVC by this tag alone.
constexpr std::string_view playable = "-tag:v hvc1";

constexpr std::string_view variable = "-rc vbr -b:v 0";
constexpr std::string_view constantQuantiser = "-rc_mode CQP";

constexpr auto encoders = std::to_array<Encoder>({
    {"mpeg4", Codec::mpeg4, Device::none, "yuv420p", "", "-q:v", "", qualitiesOfMpeg4, 1, "", {}, ""},

    {"h264_nvenc", Codec::h264, Device::nvidia, "yuv420p", "", "-cq", variable, qualitiesOfH264, 1, "-preset",
     ofNvenc, ""},
    {"h264_vaapi",
     Codec::h264,
     Device::renderNode,
     "nv12",
     "",
     "-global_quality",
     constantQuantiser,
     qualitiesOfH264,
     1,
     "",
     {},
     ""},
    {"h264_qsv", Codec::h264, Device::renderNode, "nv12", "", "-global_quality", "", qualitiesOfH264, 1,
     "-preset", ofQsv, ""},
    {"libx264", Codec::h264, Device::none, "yuv420p", "", "-crf", "", qualitiesOfH264, 1, "-preset", ofX264,
     ""},

    {"hevc_nvenc", Codec::hevc, Device::nvidia, "yuv420p", "p010le", "-cq", variable, qualitiesOfHevc, 1,
     "-preset", ofNvenc, playable},
    {"hevc_vaapi",
     Codec::hevc,
     Device::renderNode,
     "nv12",
     "p010le",
     "-global_quality",
     constantQuantiser,
     qualitiesOfHevc,
     1,
     "",
     {},
     playable},
    {"hevc_qsv", Codec::hevc, Device::renderNode, "nv12", "p010le", "-global_quality", "", qualitiesOfHevc, 1,
     "-preset", ofQsv, playable},
    {"libx265", Codec::hevc, Device::none, "yuv420p", "yuv420p10le", "-crf", "", qualitiesOfHevc, 1,
     "-preset", ofX264, "-tag:v hvc1 -x265-params log-level=error"},

    {"av1_nvenc", Codec::av1, Device::nvidia, "yuv420p", "p010le", "-cq", variable, qualitiesOfAv1, 1,
     "-preset", ofNvenc, ""},
    // Its quantiser goes to 255.
    {"av1_vaapi",
     Codec::av1,
     Device::renderNode,
     "nv12",
     "p010le",
     "-global_quality",
     constantQuantiser,
     qualitiesOfAv1,
     4,
     "",
     {},
     ""},
    {"av1_qsv", Codec::av1, Device::renderNode, "nv12", "p010le", "-global_quality", "", qualitiesOfAv1, 1,
     "-preset", ofQsv, ""},
    {"libsvtav1", Codec::av1, Device::none, "yuv420p", "yuv420p10le", "-crf", "", qualitiesOfAv1, 1,
     "-preset", ofSvt, ""},
    {"libaom-av1", Codec::av1, Device::none, "yuv420p", "yuv420p10le", "-crf", "-b:v 0", qualitiesOfAv1, 1,
     "-cpu-used", ofAom, "-row-mt 1"},
});

std::int64_t qualityOf(const Encoder& encoder, const CorvantaSdkVideoEncoding& encoding) {
    using Quality = CorvantaSdkVideoEncoding::Quality;
    const auto named =
        encoder.qualities.at(static_cast<std::size_t>(encoding.quality.value_or(Quality::medium)));
    const std::int64_t quality = encoding.crf.value_or(named) * encoder.qualityFactor;
    // A hardware encoder's 0 is its own choice.
    return encoder.isHardware() ? std::max<std::int64_t>(quality, 1) : quality;
}

} // namespace

std::vector<const Encoder*> encodersOf(CorvantaSdkVideoEncoding::Codec codec) {
    std::vector<const Encoder*> found;
    for (const Encoder& encoder : encoders) {
        if (encoder.codec == codec) {
            found.push_back(&encoder);
        }
    }
    return found;
}

std::string optionsOf(const Encoder& encoder, const CorvantaSdkVideoEncoding& encoding,
                      std::int64_t framesPerSecond) {
    using Preset = CorvantaSdkVideoEncoding::Preset;
    std::string options;
    const auto add = [&options](std::string_view option, std::string_view value = "") {
        if (!option.empty()) {
            options += options.empty() ? "" : " ";
            options += option;
            options += value.empty() ? "" : " ";
            options += value;
        }
    };
    add(encoder.qualityMode);
    add(encoder.qualityOption, std::to_string(qualityOf(encoder, encoding)));
    if (!encoder.presetOption.empty()) {
        add(encoder.presetOption,
            encoder.presets.at(static_cast<std::size_t>(encoding.preset.value_or(Preset::medium))));
    }
    // Cuts, joins and players' jumps begin at key pictures; MPEG-4 has one every 12 by itself.
    if (encoder.codec != Codec::mpeg4 && framesPerSecond > 0) {
        add("-g", std::to_string(2 * framesPerSecond));
    }
    add(encoder.otherOptions);
    return options;
}

} // namespace corvanta
