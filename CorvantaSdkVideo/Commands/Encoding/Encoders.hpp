#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEncoding.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// One of ffmpeg's encoders, and how it is told what an encoding wants.
struct Encoder {
    enum class Device { none, nvidia, renderNode };

    std::string_view name;
    CorvantaSdkVideoEncoding::Codec codec;
    Device device;
    /// Of 8 and of 10 bits; an empty one can't be encoded.
    std::string_view pixelFormat;
    std::string_view deepPixelFormat;
    /// Behind which the constant quality stands, and what has to be said with it.
    std::string_view qualityOption;
    std::string_view qualityMode;
    /// For `Quality`, in its order.
    std::array<std::int64_t, 4> qualities;
    /// From a crf of the codec to a number of this encoder.
    std::int64_t qualityFactor;
    /// Behind which the preset stands; empty if there is no choice.
    std::string_view presetOption;
    /// For `Preset`, in its order.
    std::array<std::string_view, 9> presets;
    std::string_view otherOptions;

    bool isHardware() const { return device != Device::none; }
    /// Whether pictures are to be brought to the device by a filter.
    bool uploadsPictures() const { return qualityMode == "-rc_mode CQP"; }
};

/// The encoders of a codec in the order of preference. They live as long as the process.
std::vector<const Encoder*> encodersOf(CorvantaSdkVideoEncoding::Codec codec);

/// The options of the encoder for a video of so many pictures a second (0: unknown), without its name and
/// pixel format: "-crf 19 -preset medium -g 60".
std::string optionsOf(const Encoder& encoder, const CorvantaSdkVideoEncoding& encoding,
                      std::int64_t framesPerSecond);

} // namespace corvanta
