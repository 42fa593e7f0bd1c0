#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoThumbnailInputVideo.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommand.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>
#include <platform/URL.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {

/// Writes the command texts for editing, joining, thumbnails and sound extraction. Validates nothing and
/// throws nothing: what ffmpeg refuses shows when the command runs. Stateless, safe from any thread.
class FFMPEGCommandGenerator {
  public:
    /// Trims, turns and sets the volume. Positions in seconds on the input's time line, angle in degrees. The
    /// picture is copied, so it starts at a key frame and the angle becomes a display matrix; the sound is
    /// encoded to AAC.
    FFMPEGCommand generateEditCommand(const URL& inputFile, double trimStart, double trimEnd,
                                      std::int64_t rotationAngle, float volumenLevel,
                                      const URL& outputFile) const;

    /// Joins by stream copy. Writes the list file at `inputPath`, replacing what is there; the caller deletes
    /// it. The list holds bare paths: one with a blank or a quote in it is not read as it stands.
    FFMPEGCommand generateConcatCommandFor(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                           const URL& inputPath, const std::string& outputPath) const;

    /// Failure is not reported.
    void deleteInputFilesListFile(const std::string& path) const;

    /// One frame at a position. Has no "-y": the caller removes an existing output first. ffmpeg decodes from
    /// the start of the file up to the position.
    std::string generateThumbnailGenerationCommandFor(const CorvantaSdkVideoThumbnailInputVideo& video,
                                                      const URL& outputPath) const;

    /// One frame at `interval` seconds before the end. The script begins with a blank.
    FFMPEGCommand generateThumbnailForTrim(const URL& video, double interval,
                                           std::optional<std::int64_t> width,
                                           std::optional<std::int64_t> height,
                                           const std::string& outputPath) const;

    /// The sound alone. `samplingRate` in hertz, `bitRate` in kbit/s. Has no "-y".
    std::string generateExtractAudioCommandFor(const URL& videoURL, const URL& outputPath,
                                               std::int64_t audioChannels = 1,
                                               std::int64_t samplingRate = 16000, std::int64_t bitRate = 320,
                                               const std::string& format = "wav") const;
};

} // namespace corvanta
