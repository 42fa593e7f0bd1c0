#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoProgress.hpp>
#include <platform/Task.hpp>

#include <optional>
#include <utility>

namespace corvanta {

/// The video with the cleaned sound.
struct CorvantaSdkVideoNoiseCancellationResult {
    URL fileURL;
};

/// How a sound is cleaned.
struct CorvantaSdkVideoNoiseCancellationOptions {
    /// How much of what the model takes for noise goes: from 0, the sound as it was (mono, of 16 kHz, and as
    /// late as a cleaned one), to 1. Absent is 1.
    std::optional<double> strength = {};
    /// Takes out the model's delay, so that sound and picture are together to the millisecond.
    bool compensated = false;
    /// Hears how far the run has come: the extraction, the cleaning and the writing as one course. A fraction
    /// of 1 tells that the video is written.
    CorvantaSdkVideoProgressCallback onProgress = {};
};

class CorvantaSdkVideoNoiseCancellationEngine {
  public:
    virtual ~CorvantaSdkVideoNoiseCancellationEngine() = default;

    /// Writes a new video whose sound is freed from noise; the sound becomes mono. The location gets the
    /// input's extension, what lies there is MPEG-4. An engine serves one run, and only one engine at a time
    /// can be made: the next one works when this one has run or is gone. A running task keeps its engine
    /// alive. Sound and picture stay together, but for the model's delay of 31 ms: where the sound has a
    /// hole, silence stands, where two pieces overlap, the end of the first goes. Cancelling the task (an
    /// Asio cancellation of type terminal) ends a run at its next step or second of sound; what ffmpeg does
    /// at that moment is stopped with its session. Temporary files go in every case.
    ///
    /// Throws `unableToProcessOutput` (no location, or the sound can't be put back), `configurationError`
    /// (another engine is alive, this one has run, or the model can't be loaded), `processingInProgress`,
    /// `userNotAuthenticated`, `notFoundVideo`, `invalidFile`, `unableToProcessInput` (no sound to extract)
    /// and `unableToProcessFile`. If writing the video itself fails, no error comes: look for the file. If
    /// writing the cleaned sound fails, as on a full disk, the process ends.
    virtual Task<CorvantaSdkVideoNoiseCancellationResult>
    clearNoiseForFile(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output) = 0;

    /// The same with options. Throws `configurationError` for a strength that is not from 0 to 1 as well. An
    /// engine of another's making that knows no options cleans without.
    virtual Task<CorvantaSdkVideoNoiseCancellationResult>
    clearNoiseForFile(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output,
                      CorvantaSdkVideoNoiseCancellationOptions /*options*/) {
        return clearNoiseForFile(std::move(input), std::move(output));
    }
};

} // namespace corvanta
