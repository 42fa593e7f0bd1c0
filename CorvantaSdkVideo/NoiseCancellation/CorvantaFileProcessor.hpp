#pragma once

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <platform/Task.hpp>
#include <platform/URL.hpp>

#include <memory>

namespace corvanta {

class ProgressMeter;

/// Puts a sound file on a video. Keeps no state.
class CorvantaFileProcessor {
  public:
    explicit CorvantaFileProcessor(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
                                       std::make_shared<FFMPEGCommandExecutorImplementation>());

    /// Writes an MPEG-4 file with the first picture track of the one and the first sound track of the other,
    /// at 30 frames a second, turned as the video is. A picture that runs at exactly 30 frames in a codec
    /// that MPEG-4 players read, and states its times, is copied, any other is encoded. The tags of the
    /// video, its picture and its sound are kept as far as MPEG-4 has a place for them. A shorter sound
    /// leaves the end silent, a longer one is kept.
    ///
    /// Throws `unableToProcessOutput` if one of the tracks is missing, the asset reader's PlatformError if a
    /// file can't be read. A failure of the writing itself is not reported: the file is missing or broken
    /// then. `meter`, which may be absent, is in the part of an operation that this is, and hears that the
    /// operation is complete once the file is there.
    Task<> mergeVideoWithAudio(URL videoURL, URL audioURL, URL outputURL,
                               std::shared_ptr<ProgressMeter> meter = nullptr) const;

    /// Whether the picture of the video would be copied. A file that can't be read counts as such.
    static bool copiesPicture(const URL& video);

    /// Ignores a failure.
    void removeFile(const URL& at) const;

  private:
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
};

} // namespace corvanta
