#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// What ffprobe's JSON output tells of a file.
struct ProbeOutput {
    std::int64_t size = 0;
    /// Seconds, not yet checked; see `millisecondsFromSeconds`.
    double duration = 0;
    std::string format;
    std::vector<CorvantaSdkVideoTrackInformation> videos;
    std::vector<CorvantaSdkVideoAudioTrackInformation> audios;
    /// Stream indexes of attached pictures.
    std::vector<std::int64_t> covers;
};

/// Reads the output of "-print_format json -show_format -show_streams". Nothing if it is no JSON or lacks its
/// two parts; a single value that is missing or of another type has its default. A stream's duration that is
/// no representable number is fatal.
std::optional<ProbeOutput> parseProbeOutput(std::string_view json);

/// Truncates toward zero. A duration that 64-bit milliseconds can't hold is a broken invariant: the process
/// stops.
std::int64_t millisecondsFromSeconds(double seconds);

} // namespace corvanta
