#include <CorvantaSdkVideo/NoiseCancellation/TimedSound.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvanta {

TimedSound::TimedSound(const std::string& path, const SoundTimes& times)
    : file_(path), length_(file_.length()) {
    const double rate = file_.sampleRate();
    const double seconds = static_cast<double>(length_) / rate;
    const bool isAsStated = std::abs(times.duration - seconds) <= 0.25 + seconds / 20;
    for (const SoundBreak& now : times.breaks) {
        const Break here{std::llround(now.at * rate), std::llround(now.silence * rate)};
        if ((isAsStated && here.at < file_.length()) || here.at == 0) {
            breaks_.push_back(here);
            length_ += here.silence;
        }
    }
}

std::int64_t TimedSound::read(std::span<float> samples) {
    std::size_t filled = 0;
    while (filled < samples.size()) {
        const std::span<float> rest = samples.subspan(filled);
        if (silence_ > 0) {
            const auto count = static_cast<std::size_t>(std::min<std::int64_t>(silence_, std::ssize(rest)));
            std::ranges::fill(rest.first(count), 0.0F);
            silence_ -= static_cast<std::int64_t>(count);
            filled += count;
        } else if (nextBreak_ < breaks_.size() && position_ >= breaks_[nextBreak_].at) {
            const std::int64_t silence = breaks_[nextBreak_++].silence;
            silence_ = std::max<std::int64_t>(0, silence);
            skip(std::max<std::int64_t>(0, -silence));
        } else {
            const std::int64_t end =
                nextBreak_ < breaks_.size() ? breaks_[nextBreak_].at : position_ + std::ssize(rest);
            const std::int64_t count = readUpTo(end, rest);
            if (count == 0) {
                break;
            }
            filled += static_cast<std::size_t>(count);
        }
    }
    return static_cast<std::int64_t>(filled);
}

std::int64_t TimedSound::readUpTo(std::int64_t end, std::span<float> samples) {
    const std::int64_t wanted = std::min<std::int64_t>(end - position_, std::ssize(samples));
    const std::int64_t count = file_.read(samples.first(static_cast<std::size_t>(wanted)));
    position_ += count;
    return count;
}

void TimedSound::skip(std::int64_t count) {
    std::array<float, 1024> skipped;
    const std::int64_t end = position_ + count;
    while (position_ < end && readUpTo(end, skipped) > 0) {
    }
}

} // namespace corvanta
