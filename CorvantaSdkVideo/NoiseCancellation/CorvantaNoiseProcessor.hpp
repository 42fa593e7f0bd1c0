#pragma once

#include <CorvantaSdkVideo/NoiseCancellation/PCMBuffer.hpp>

#include <talvo_audio_sdk.h>

#include <cstdint>
#include <functional>
#include <string>

namespace corvanta {

/// The library's rate of equal value; 16000 for any value that it doesn't know.
TalvoAudioSamplingRate talvoRate(unsigned sampleRate);

/// The library's frame duration of equal value; 10 for any value that it doesn't know.
TalvoAudioFrameDuration talvoFrameDuration(unsigned milliseconds);

/// Gives `body` the code points of a UTF-8 text, as 32-bit values with a 0 at the end.
void withWideChars(const std::string& text, const std::function<void(const wchar_t*)>& body);

/// One noise cleaning session of the audio library, for one run and one thread. The library must be
/// initialised.
class CorvantaNoiseProcessor {
  public:
    /// `sampleRate` in hertz, `frameDuration` in milliseconds. A product that doesn't fit stops the process.
    CorvantaNoiseProcessor(std::string modelName, unsigned sampleRate, unsigned frameDuration);
    CorvantaNoiseProcessor(const CorvantaNoiseProcessor&) = delete;
    CorvantaNoiseProcessor& operator=(const CorvantaNoiseProcessor&) = delete;
    /// Closes a session that was not ended; the library instance is then left to whoever made it.
    ~CorvantaNoiseProcessor();

    /// Samples in a frame.
    unsigned bufferSize() const { return bufferSize_; }

    /// Loads the model from the module's resources into the library, under its own name; false for one that
    /// can't be read or is there already. A module that has no resource folder at all stops the process.
    static bool loadModel(const std::string& modelName);

    /// Loads the model, unless that was done, and opens the session. Throws `configurationError`.
    void startSession(bool modelIsLoaded = false);

    /// Cleans one frame of `bufferSize()` samples. What the library refuses leaves `bufferOut` as it was.
    void process(const PCMBuffer& bufferIn, PCMBuffer& bufferOut);

    /// How much is taken away from the next frame on, from 0 to 1. Throws `configurationError` for another
    /// one.
    void setStrength(float strength);

    /// By how many samples what comes out is late, found out by a click through a session of its own.
    std::int64_t delay() const;

    /// Closes the session and destroys the library instance. Throws `configurationError`.
    void endSession();

  private:
    void* createSession() const;
    void closeSession();

    unsigned bufferSize_;
    unsigned frameDuration_;
    void* sessionId_ = nullptr;
    std::string modelName_;
    unsigned sampleRate_;
};

} // namespace corvanta
