#include "talvo_audio_sdk/session.hpp"

#include "utils/denormal_guard.hpp"
#include "utils/talvo_exception.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <limits>

namespace TALVO::TALVO_AUDIO {
namespace {

constexpr float lowest = -32768.0f;
constexpr float highest = 32767.0f;
constexpr float toScale = 32768.0f;
constexpr float fromScale = 3.0517578e-5f;

constexpr char floatSizes[] = "ERROR input dataSize or output dataSize is wrong ";
constexpr char shortSizes[] =
    "ERROR input dataSize or output dataSize or pointers of inputData output Data is wrong";

/// A value that is no number becomes silence: in a resampler or a network it would stay for good.
float clamped(float sample) {
    return std::isnan(sample) ? 0.0f : std::clamp(sample, lowest, highest);
}

void clampAll(std::vector<float>& samples) {
    for (float& sample : samples)
        sample = clamped(sample);
}

int modelRate(NOISE_CANCELLER::NoiseCleaner const& cleaner) {
    return cleaner.weight().getWeightInfo().first;
}

/// The duration as a number; one that isn't listed can't be cut into frames at all.
int checked(TalvoAudioFrameDuration duration) {
    constexpr std::array durations{10, 15, 20, 30, 32, 40};
    int const milliseconds = static_cast<int>(duration);
    if (std::ranges::find(durations, milliseconds) == durations.end())
        TALVO_THROW("a frame duration must be 10, 15, 20, 30, 32 or 40 ms");
    return milliseconds;
}

} // namespace

std::size_t getSampleCount(int milliseconds, int rate) {
    return static_cast<std::size_t>(static_cast<double>(rate) * static_cast<double>(milliseconds) / 1000.0);
}

TalvoAudioSessionT::TalvoAudioSessionT(TalvoAudioSamplingRate inRate, TalvoAudioSamplingRate outRate,
                                       TalvoAudioFrameDuration duration, char const* modelName,
                                       TalvoAudioSessionType type)
    : cleaner_((checked(duration), NOISE_CANCELLER::NoiseCleaner::create(inRate, duration, modelName, type))),
      resamplerIn_(getSampleCount(duration, inRate), getSampleCount(duration, modelRate(*cleaner_))),
      resamplerOut_(getSampleCount(duration, modelRate(*cleaner_)),
                    getSampleCount(duration, type == TalvoAudioSessionType::voiceActivity
                                                 ? modelRate(*cleaner_)
                                                 : static_cast<int>(outRate))),
      inputSize_(getSampleCount(duration, inRate)),
      outputSize_(type == TalvoAudioSessionType::voiceActivity ? 0 : getSampleCount(duration, outRate)),
      type_(type) {
    bool const resamples = inRate != outRate || modelRate(*cleaner_) != inRate;
    if (resamples && (duration == TALVO_AUDIO_DURATION_15 || duration == TALVO_AUDIO_DURATION_32))
        TALVO_THROW("RESAMPLER WORKS WITH WRONG FRAMEDURATION ");
}

bool TalvoAudioSessionT::cleanNoise(short const* in, std::size_t inSize, short* out, std::size_t outSize) {
    if (!sizesFit(in, inSize, out, outSize)) {
        reportSizes(shortSizes);
        return false;
    }
    UTILS::DenormalGuard const guard;
    load(in);
    clean();
    TALVO_ASSERT(samples_.size() == outSize, "tempVector.size() == outSize");
    std::ranges::transform(samples_, out, [](float sample) { return static_cast<short>(clamped(sample)); });
    return true;
}

bool TalvoAudioSessionT::cleanNoise(float const* in, std::size_t inSize, float* out, std::size_t outSize) {
    if (!sizesFit(in, inSize, out, outSize)) {
        reportSizes(floatSizes);
        return false;
    }
    UTILS::DenormalGuard const guard;
    load(in);
    clean();
    TALVO_ASSERT(samples_.size() == outSize, "tempVector.size()==outSize");
    std::ranges::transform(samples_, out, [](float sample) { return clamped(sample) * fromScale; });
    return true;
}

float TalvoAudioSessionT::frameVad(short const* in, std::size_t size) {
    if (!sizesFit(in, size, in, outputSize_)) {
        reportSizes(shortSizes);
        TALVO_THROW("ERROR in input values");
    }
    UTILS::DenormalGuard const guard;
    load(in);
    return measure();
}

float TalvoAudioSessionT::frameVad(float const* in, std::size_t size) {
    if (!sizesFit(in, size, in, outputSize_)) {
        reportSizes(floatSizes);
        return -2.0f;
    }
    UTILS::DenormalGuard const guard;
    load(in);
    return measure();
}

float TalvoAudioSessionT::frameNoiseDB(short const* in, std::size_t size) {
    if (!sizesFit(in, size, in, outputSize_)) {
        reportSizes(shortSizes);
        TALVO_THROW("ERROR in input values");
    }
    UTILS::DenormalGuard const guard;
    load(in);
    return measure();
}

float TalvoAudioSessionT::frameNoiseDB(float const* in, std::size_t size) {
    return frameVad(in, size);
}

bool TalvoAudioSessionT::resetNoiseDBSession() {
    cleaner_->resetSession();
    resamplerIn_.reset();
    resamplerOut_.reset();
    return true;
}

bool TalvoAudioSessionT::sizesFit(void const* in, std::size_t inSize, void const* out,
                                  std::size_t outSize) const {
    return in != nullptr && out != nullptr && inSize == inputSize_ && outSize == outputSize_;
}

void TalvoAudioSessionT::reportSizes(char const* text) const {
    std::cerr << text << "\n input size must be " << inputSize_ << "\n output size must be " << outputSize_
              << std::endl;
}

void TalvoAudioSessionT::load(short const* in) {
    samples_.assign(in, in + inputSize_);
}

void TalvoAudioSessionT::load(float const* in) {
    samples_.resize(inputSize_);
    std::transform(in, in + inputSize_, samples_.begin(), [](float sample) {
        float const scaled = sample * toScale;
        return std::isfinite(scaled) ? scaled : clamped(scaled);
    });
}

/// What the model's rate and then the cleaner make of the frame loaded.
float TalvoAudioSessionT::measure() {
    if (resamplerIn_.resample(samples_, resampled_) > 0)
        samples_.swap(resampled_);
    clampAll(samples_);
    cleaner_->cleanNoise(samples_);
    float const value = samples_.at(0);
    return std::isnan(value) ? 0.0f : value;
}

void TalvoAudioSessionT::clean() {
    if (resamplerIn_.resample(samples_, resampled_) > 0)
        samples_.swap(resampled_);
    clampAll(samples_);
    cleaner_->cleanNoise(samples_);
    // What a model makes of a frame must not stay in the filter either.
    for (float& sample : samples_)
        if (!std::isfinite(sample))
            sample = clamped(sample);
    if (resamplerOut_.resample(samples_, resampled_) > 0)
        samples_.swap(resampled_);
}

} // namespace TALVO::TALVO_AUDIO
