#include "noise_instance.hpp"

#include "talvo_audio_sdk.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>

namespace TALVO::LADSPA {
namespace {

constexpr int milliseconds = 10;

int checked(unsigned long rate) {
    constexpr std::array rates{16000ul, 24000ul, 32000ul, 44100ul, 48000ul, 88200ul, 96000ul};
    if (std::ranges::find(rates, rate) == rates.end())
        throw std::runtime_error(
            std::to_string(rate) +
            " Hz: the sample rate must be 16000, 24000, 32000, 44100, 48000, 88200 or 96000");
    return static_cast<int>(rate);
}

} // namespace

void NoiseInstance::Close::operator()(void* session) const { talvoAudioNcCloseSession(session); }

NoiseInstance::NoiseInstance(unsigned long rate)
    : rate_(checked(rate)), block_(static_cast<std::size_t>(rate_ * milliseconds / 1000)),
      untouched_(block_.size() + measuredDelay()) {
    restart();
}

NoiseInstance::Session NoiseInstance::open() const {
    auto const rate = static_cast<TalvoAudioSamplingRate>(rate_);
    Session session(talvoAudioNcCreateSession(rate, rate, TALVO_AUDIO_DURATION_10, LibraryUse::model));
    if (session == nullptr)
        throw std::runtime_error("the noise model can't be used");
    return session;
}

bool NoiseInstance::clean(Session const& session) {
    auto const size = static_cast<unsigned>(block_.size());
    return talvoAudioNcCleanAmbientNoiseFloat(session.get(), block_.data(), size, block_.data(), size) == 0;
}

std::size_t NoiseInstance::measuredDelay() {
    Session const session = open();
    talvoAudioNcSetStrength(session.get(), 0.0f);
    // A click between two frames of silence: a resampler's first frame is like no other.
    constexpr int clickFrame = 2;
    constexpr int longestDelay = 10;
    float highest = 0.0f;
    std::size_t delay = 0;
    for (int frame = 0; frame < clickFrame + longestDelay; ++frame) {
        std::ranges::fill(block_, 0.0f);
        block_.front() = frame == clickFrame ? 0.5f : 0.0f;
        if (!clean(session))
            throw std::runtime_error("the noise model can't be used");
        auto const peak = std::ranges::max_element(block_, {}, [](float sample) { return std::abs(sample); });
        if (std::abs(*peak) > highest) {
            highest = std::abs(*peak);
            delay = static_cast<std::size_t>(frame - clickFrame) * block_.size() +
                    static_cast<std::size_t>(peak - block_.begin());
        }
    }
    std::ranges::fill(block_, 0.0f);
    return delay;
}

void NoiseInstance::restart() {
    session_ = open();
    works_ = true;
    std::ranges::fill(block_, 0.0f);
    std::ranges::fill(untouched_, 0.0f);
    atBlock_ = 0;
    atUntouched_ = 0;
    starts_ = true;
}

float NoiseInstance::mixed(float cleaned, float untouched) const {
    // What is no number in one of them must not come through where only the other one is wanted.
    if (strength_ >= 1.0f)
        return cleaned;
    if (strength_ <= 0.0f)
        return untouched;
    return strength_ * cleaned + (1.0f - strength_) * untouched;
}

void NoiseInstance::run(float const* in, float* out, std::size_t count, float strength) {
    float wanted = std::isnan(strength) ? strength_ : std::clamp(strength, 0.0f, 1.0f);
    if (!works_)
        wanted = 0.0f;
    if (starts_)
        strength_ = wanted;
    starts_ = false;
    float const step = 1.0f / static_cast<float>(block_.size());
    for (std::size_t i = 0; i < count; ++i) {
        float const sample = in[i];
        strength_ += std::clamp(wanted - strength_, -step, step);
        out[i] = mixed(block_[atBlock_], untouched_[atUntouched_]);
        block_[atBlock_] = sample;
        untouched_[atUntouched_] = sample;
        atUntouched_ = atUntouched_ + 1 == untouched_.size() ? 0 : atUntouched_ + 1;
        if (++atBlock_ < block_.size())
            continue;
        atBlock_ = 0;
        cleanNext();
        if (!works_)
            wanted = strength_ = 0.0f;
    }
}

void NoiseInstance::cleanNext() {
    // Of 16-bit sound the last bit alone: a model that has grown used to it takes what comes then for speech.
    constexpr float least = 6e-5f;
    if (std::ranges::all_of(block_, [](float sample) { return std::abs(sample) < least; }))
        std::ranges::fill(block_, 0.0f);
    works_ = works_ && clean(session_);
}

} // namespace TALVO::LADSPA
