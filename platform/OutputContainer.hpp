#pragma once

#include <string>

namespace corvanta {

/// Whether ffmpeg, which chooses an output's container by the name, writes one file at `path`: not so a
/// playlist ("m3u8", "mpd"), which comes with its segments beside it.
bool isSingleFileOutput(const std::string& path);

} // namespace corvanta
