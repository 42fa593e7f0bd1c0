#pragma once

#include <string>

namespace corvanta {

/// The bits of one component of a picture in that format, by ffmpeg's name; 0 for an unknown one.
int bitsPerComponent(const std::string& pixelFormat);

} // namespace corvanta
