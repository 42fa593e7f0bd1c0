#pragma once

#include "noise_canceller/noise_cleaner.hpp"
#include "talvo_audio_sdk.h"
#include "talvo_audio_sdk/session_type.hpp"
#include "utils/cyclic_block_data.hpp"
#include "utils/resampler.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace TALVO::TALVO_AUDIO {

/// Adapts a caller's stream to one model: its sample rate, and floats on the 16-bit scale. A wrong
/// frame size is caught here, before it can touch the stream. One thread at a time.
class TalvoAudioSessionT {
  public:
    TalvoAudioSessionT(TalvoAudioSamplingRate inRate, TalvoAudioSamplingRate outRate,
                       TalvoAudioFrameDuration duration, char const* modelName, TalvoAudioSessionType type);

    TalvoAudioSessionType getType() const { return type_; }
    NOISE_CANCELLER::NoiseCleaner& cleaner() { return *cleaner_; }

    /// False for a wrong size or a null pointer.
    bool cleanNoise(short const* in, std::size_t inSize, short* out, std::size_t outSize);
    bool cleanNoise(float const* in, std::size_t inSize, float* out, std::size_t outSize);

    /// False for a strength outside of 0 to 1.
    bool setStrength(float strength);

    /// A wrong size or a null pointer throws in the 16-bit forms and gives -2 in the others.
    float frameVad(short const* in, std::size_t size);
    float frameVad(float const* in, std::size_t size);
    float frameNoiseDB(short const* in, std::size_t size);
    float frameNoiseDB(float const* in, std::size_t size);

    bool resetNoiseDBSession();

  private:
    /// Reports a wrong size or a null pointer, in the words of the sample's form.
    template <class Sample>
    bool accepts(Sample const* in, std::size_t inSize, Sample const* out, std::size_t outSize) const;
    void load(short const* in);
    void load(float const* in);
    /// What the model's rate and then the cleaner make of a frame, into samples_.
    template <class Sample>
    void runCleaner(Sample const* in);
    template <class Sample>
    void clean(Sample const* in);
    /// The share of the untouched sound that the strength leaves, added to samples_.
    void weaken();
    template <class Sample>
    float measure(Sample const* in);
    void resample(UTILS::Resampler& resampler);

    std::unique_ptr<NOISE_CANCELLER::NoiseCleaner> cleaner_;
    UTILS::Resampler resamplerIn_;
    UTILS::Resampler resamplerOut_;
    std::uint64_t inputSize_;
    std::uint64_t outputSize_;
    TalvoAudioSessionType type_;
    float strength_ = 1.0f;
    CONTAINERS::CyclicBlockData untouched_; ///< at the model's rate, as late as what the cleaner gives
    std::vector<float> samples_;
    std::vector<float> resampled_;
};

/// Samples in a frame, cut toward zero.
std::size_t getSampleCount(int milliseconds, int rate);

} // namespace TALVO::TALVO_AUDIO
