#pragma once

#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseProcessor.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaSdkVideoNoiseCancellationEngine.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/TimedSound.hpp>
#include <platform/URL.hpp>

#include <cstdint>

namespace corvanta {

/// Cleans an extracted sound into a new file, one frame of a fixed size at a time; the last one is filled up
/// by what the buffer held before. The library must be initialised. One thread at a time.
class SoundCleaning {
  public:
    static constexpr const char* modelFileName = "c6.f.s.ced125.tw";

    /// With the model of that name, which may be loaded already. Throws `unableToProcessFile` for a sound of
    /// more than one channel and for a folder with too little room, `configurationError` for a model that
    /// can't be loaded, PlatformError for a file that can't be opened.
    SoundCleaning(URL audio, URL cleaned, const SoundTimes& times,
                  const CorvantaSdkVideoNoiseCancellationOptions& options, bool modelIsLoaded);

    /// False when the whole sound is cleaned. A failure inside the loop can't be told from a broken disk or a
    /// broken module, and ends the process.
    bool cleanFrames(int count);

    /// Seconds in all, and those that are cleaned.
    double seconds() const;
    double secondsDone() const;

    /// Ends the session and the library's instance. Throws `configurationError`.
    void end() { processor_.endSession(); }

  private:
    bool renderFrame();
    void cleanFrame();

    URL audio_;
    URL cleaned_;
    TimedSound source_;
    AudioFileWriter target_;
    CorvantaNoiseProcessor processor_;
    PCMBuffer rendered_;
    PCMBuffer result_;
    bool sourceEnded_ = false;
    std::int64_t framesDone_ = 0;
    // Samples that the model is late by: left out at the start, and fetched from it at the end.
    std::int64_t early_ = 0;
    std::int64_t owed_ = 0;
};

} // namespace corvanta
