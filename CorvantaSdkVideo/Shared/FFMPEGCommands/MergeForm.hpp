#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvanta {

/// What a merge's command says of the output's form; as it stands here unless a request asks for another.
struct MergeForm {
    /// Options in front of the first input, each with a blank behind it.
    std::string globalOptions = {};
    /// What each output video track's filters end with, such as ",hwupload"; tracks beyond the list have
    /// nothing.
    std::vector<std::string> pictureFilters = {};
    std::string pictureOptions = "-c:v mpeg4 -pix_fmt yuv420p";
    /// Hertz.
    std::int64_t sampleRate = 44100;
    std::int64_t channels = 2;
    /// ffmpeg's name for so many channels.
    std::string channelLayout = "stereo";
    /// Options of the whole output, with a blank behind them.
    std::string outputOptions = "-preset medium ";
};

} // namespace corvanta
