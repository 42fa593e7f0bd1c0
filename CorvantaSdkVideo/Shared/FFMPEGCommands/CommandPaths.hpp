#pragma once

#include <string_view>

/// Which paths reach ffmpeg as what they are. The fixed command texts protect nothing, so whoever runs a
/// command checks its paths first.
namespace corvanta {

/// Whether ffmpeg reads a word as the name of a file: neither as an option nor as "protocol:".
bool isFileName(std::string_view path);

/// Whether ffmpeg, given `ffmpegFormatted(path)`, opens the file at that very path.
bool isWritableQuoted(std::string_view path);

/// Whether ffmpeg's image writer writes one file of that very name: it reads "%d" as a frame number and cuts
/// a name of 1024 bytes or more.
bool isPlainImageName(std::string_view path);

} // namespace corvanta
