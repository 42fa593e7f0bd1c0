#pragma once

#include <platform/URL.hpp>

#include <cstdint>
#include <string>

namespace corvanta {

/// Writes the command texts that add a blank track to a video or remove the tracks of one kind. Durations are
/// milliseconds, sizes pixels. Validates nothing. Stateless, safe from any thread.
class FFMPEGVideoTracksCommandGenerator {
  public:
    /// A red picture, 30 frames a second with a key frame every second.
    std::string createVideoTrackCommand(const URL& tempURL, std::int64_t duration, std::int64_t width,
                                        std::int64_t height) const;

    /// Silence, 44100 Hz, stereo.
    std::string createAudioTrackCommand(const URL& tempURL, std::int64_t duration) const;

    /// These two copy all pictures and sounds of the input and the one track of the temporary file. The input
    /// must have both kinds of streams. The paths are plain ones.
    std::string generateAddVideoTrackCommand(const std::string& inputPath, const std::string& tempPath,
                                             const std::string& outputPath) const;
    std::string generateAddAudioTrackCommand(const std::string& inputPath, const std::string& tempPath,
                                             const std::string& outputPath) const;

    /// Keeps one audio track, the one that ffmpeg prefers.
    std::string generateRemoveVideoTrackCommand(const URL& inputPath, const URL& outputPath) const;

    /// Keeps one video track, the one that ffmpeg prefers. The files stand in it as the bare texts of their
    /// URLs.
    std::string generateRemoveAudioTrackCommand(const URL& inputPath, const URL& outputPath) const;
};

} // namespace corvanta
