#include "talvo_audio_sdk/session.hpp"

#include "utils/denormal_guard.hpp"
#include "utils/talvo_exception.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <type_traits>

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
float clamped(float sample) { return std::isnan(sample) ? 0.0f : std::clamp(sample, lowest, highest); }

int modelRate(NOISE_CANCELLER::NoiseCleaner const& cleaner) { return cleaner.weight().getWeightInfo().first; }

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
      type_(type), untouched_(4 * (cleaner_->latency() + getSampleCount(duration, modelRate(*cleaner_)))) {
    untouched_.push_backNULL(cleaner_->latency());
    // What these hold by turns, so that hardly any frame allocates: the caller's frame, the model's side of
    // it, and the model's own frames.
    auto const [rate, frameDuration] = cleaner_->weight().getWeightInfo();
    for (std::vector<float>* const room : {&samples_, &resampled_})
        room->reserve(std::max(
            {inputSize_, outputSize_, getSampleCount(duration, rate), getSampleCount(frameDuration, rate)}));
    bool const resamples = inRate != outRate || modelRate(*cleaner_) != inRate;
    if (resamples && (duration == TALVO_AUDIO_DURATION_15 || duration == TALVO_AUDIO_DURATION_32))
        TALVO_THROW("RESAMPLER WORKS WITH WRONG FRAMEDURATION ");
}

bool TalvoAudioSessionT::setStrength(float strength) {
    if (!(strength >= 0.0f && strength <= 1.0f))
        return false;
    strength_ = strength;
    return true;
}

bool TalvoAudioSessionT::cleanNoise(short const* in, std::size_t inSize, short* out, std::size_t outSize) {
    if (!accepts(in, inSize, out, outSize))
        return false;
    UTILS::DenormalGuard const guard;
    clean(in);
    TALVO_ASSERT(samples_.size() == outSize, "tempVector.size() == outSize");
    std::ranges::transform(samples_, out, [](float sample) { return static_cast<short>(clamped(sample)); });
    return true;
}

bool TalvoAudioSessionT::cleanNoise(float const* in, std::size_t inSize, float* out, std::size_t outSize) {
    if (!accepts(in, inSize, out, outSize))
        return false;
    UTILS::DenormalGuard const guard;
    clean(in);
    TALVO_ASSERT(samples_.size() == outSize, "tempVector.size()==outSize");
    std::ranges::transform(samples_, out, [](float sample) { return clamped(sample) * fromScale; });
    return true;
}

float TalvoAudioSessionT::frameVad(short const* in, std::size_t size) {
    if (!accepts(in, size, in, outputSize_))
        TALVO_THROW("ERROR in input values");
    return measure(in);
}

float TalvoAudioSessionT::frameVad(float const* in, std::size_t size) {
    return accepts(in, size, in, outputSize_) ? measure(in) : -2.0f;
}

float TalvoAudioSessionT::frameNoiseDB(short const* in, std::size_t size) {
    if (!accepts(in, size, in, outputSize_))
        TALVO_THROW("ERROR in input values");
    return measure(in);
}

float TalvoAudioSessionT::frameNoiseDB(float const* in, std::size_t size) { return frameVad(in, size); }

bool TalvoAudioSessionT::resetNoiseDBSession() {
    cleaner_->resetSession();
    resamplerIn_.reset();
    resamplerOut_.reset();
    return true;
}

template <class Sample>
bool TalvoAudioSessionT::accepts(Sample const* in, std::size_t inSize, Sample const* out,
                                 std::size_t outSize) const {
    if (in != nullptr && out != nullptr && inSize == inputSize_ && outSize == outputSize_)
        return true;
    std::cerr << (std::is_same_v<Sample, short> ? shortSizes : floatSizes) << "\n input size must be "
              << inputSize_ << "\n output size must be " << outputSize_ << std::endl;
    return false;
}

void TalvoAudioSessionT::load(short const* in) { samples_.assign(in, in + inputSize_); }

void TalvoAudioSessionT::load(float const* in) {
    samples_.resize(inputSize_);
    std::transform(in, in + inputSize_, samples_.begin(), [](float sample) {
        float const scaled = sample * toScale;
        return std::isfinite(scaled) ? scaled : clamped(scaled);
    });
}

template <class Sample>
void TalvoAudioSessionT::runCleaner(Sample const* in) {
    load(in);
    resample(resamplerIn_);
    for (float& sample : samples_)
        sample = clamped(sample);
    if (type_ == TalvoAudioSessionType::noiseCleaning)
        untouched_.push_back(samples_.data(), samples_.size());
    cleaner_->cleanNoise(samples_);
}

void TalvoAudioSessionT::weaken() {
    if (strength_ < 1.0f)
        std::transform(samples_.begin(), samples_.end(), untouched_.data(), samples_.begin(),
                       [this](float cleaned, float untouched) {
                           return strength_ * clamped(cleaned) + (1.0f - strength_) * untouched;
                       });
    untouched_.pop_front(samples_.size());
}

template <class Sample>
float TalvoAudioSessionT::measure(Sample const* in) {
    UTILS::DenormalGuard const guard;
    runCleaner(in);
    float const value = samples_.at(0);
    return std::isnan(value) ? 0.0f : value;
}

template <class Sample>
void TalvoAudioSessionT::clean(Sample const* in) {
    runCleaner(in);
    weaken();
    // What a model makes of a frame must not stay in the filter either.
    for (float& sample : samples_)
        if (!std::isfinite(sample))
            sample = clamped(sample);
    resample(resamplerOut_);
}

void TalvoAudioSessionT::resample(UTILS::Resampler& resampler) {
    if (resampler.resample(samples_, resampled_) > 0)
        samples_.swap(resampled_);
}

} // namespace TALVO::TALVO_AUDIO
