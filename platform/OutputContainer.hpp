#pragma once

#include <string>
#include <vector>

namespace corvanta {

/// Whether ffmpeg, which chooses an output's container by the name, writes one file at `path`: not so a
/// playlist ("m3u8", "mpd"), which comes with its segments beside it.
bool isSingleFileOutput(const std::string& path);

/// Whether the container that ffmpeg writes for this extension is known to take these codecs, given by
/// libav's numbers.
bool takesCodecs(const std::string& extension, const std::vector<int>& codecs);

} // namespace corvanta
