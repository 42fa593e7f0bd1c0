#include <CorvantaSdkVideo/NoiseCancellation/SoundCleaning.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>

#include <algorithm>
#include <span>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

constexpr unsigned frameDurationMillis = 10;
constexpr int soundFramesPerSecond = 100;

} // namespace

SoundCleaning::SoundCleaning(URL audio, URL cleaned, const SoundTimes& times,
                             const CorvantaSdkVideoNoiseCancellationOptions& options, bool modelIsLoaded)
    : audio_(std::move(audio)), cleaned_(std::move(cleaned)), source_(audio_.path(), times),
      target_(cleaned_.path(), source_.file()),
      processor_(modelFileName, static_cast<unsigned>(source_.file().sampleRate()), frameDurationMillis) {
    const auto frame = static_cast<std::size_t>(source_.file().sampleRate() / soundFramesPerSecond);
    if (frame == 0 || source_.file().channels() != 1) {
        throw Error(Error::unableToProcessFile, audio_.path() + ": no sound of one channel");
    }
    constexpr std::int64_t bytesPerSample = 2;
    requireFreeSpace(cleaned_.path(), source_.length() * bytesPerSample, Error::unableToProcessFile);
    rendered_.samples = std::vector<float>(frame);
    result_.samples = std::vector<float>(frame);
    processor_.startSession(modelIsLoaded);
    if (options.strength) {
        processor_.setStrength(static_cast<float>(*options.strength));
    }
    if (options.compensated) {
        early_ = owed_ = processor_.delay();
    }
}

bool SoundCleaning::cleanFrames(int count) {
    try {
        for (int frame = 0; frame < count; ++frame) {
            if (!renderFrame()) {
                return false;
            }
            cleanFrame();
            ++framesDone_;
        }
    } catch (const std::exception& error) {
        // Nobody else will, and it may be these that fill the disk.
        CorvantaSdkVideoUtils::deleteFileIfExists(audio_);
        CorvantaSdkVideoUtils::deleteFileIfExists(cleaned_);
        fatalError(("The manual rendering failed: " + localizedDescription(error) + ".").c_str());
    }
    return true;
}

double SoundCleaning::seconds() const {
    return static_cast<double>(source_.length()) / source_.file().sampleRate();
}

double SoundCleaning::secondsDone() const { return static_cast<double>(framesDone_) / soundFramesPerSecond; }

bool SoundCleaning::renderFrame() {
    std::vector<float>& rendered = *rendered_.floatChannelData();
    if (!sourceEnded_ && source_.read(rendered) > 0) {
        return true;
    }
    if (!std::exchange(sourceEnded_, true)) {
        std::ranges::fill(rendered, 0.0F);
    }
    return owed_ > 0;
}

void SoundCleaning::cleanFrame() {
    processor_.process(rendered_, result_);
    std::span<const float> samples = *result_.floatChannelData();
    const auto leftOut = static_cast<std::size_t>(std::min<std::int64_t>(early_, std::ssize(samples)));
    early_ -= static_cast<std::int64_t>(leftOut);
    samples = samples.subspan(leftOut);
    if (sourceEnded_) {
        samples = samples.first(static_cast<std::size_t>(std::min<std::int64_t>(owed_, std::ssize(samples))));
        owed_ -= std::ssize(samples);
    }
    target_.write(samples);
}

} // namespace corvanta
