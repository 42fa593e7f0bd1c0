#pragma once

#include <cstdint>
#include <variant>
#include <vector>

namespace corvanta {

/// A block of mono samples: floats of -1...1, 16-bit or 32-bit integers.
struct PCMBuffer {
    std::variant<std::vector<float>, std::vector<std::int16_t>, std::vector<std::int32_t>> samples;

    std::vector<float>* floatChannelData() { return std::get_if<std::vector<float>>(&samples); }
    std::vector<std::int16_t>* int16ChannelData() { return std::get_if<std::vector<std::int16_t>>(&samples); }
    const std::vector<float>* floatChannelData() const { return std::get_if<std::vector<float>>(&samples); }
    const std::vector<std::int16_t>* int16ChannelData() const {
        return std::get_if<std::vector<std::int16_t>>(&samples);
    }
};

} // namespace corvanta
