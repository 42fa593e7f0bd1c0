#pragma once

#include <platform/URL.hpp>

#include <cstdint>
#include <string>

namespace corvanta {

/// Draws the loudness of the first sound track, of all its channels together, white on nothing. Quiet parts
/// are lifted, or speech beside music would be a line.
std::string waveformCommand(const URL& video, std::int64_t width, std::int64_t height, const URL& image);

} // namespace corvanta
