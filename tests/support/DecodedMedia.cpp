#include "support/DecodedMedia.hpp"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <stdexcept>

namespace corvanta::test {

constexpr int windowLength = DecodedSound::sampleRate / 50;

std::vector<TimedFrame> decodedVideo(const std::string& path, int videoTrack) {
    const std::string position = std::to_string(videoTrack);
    const std::string images =
        runTool("ffmpeg", {"-v", "error", "-i", path, "-map", "0:v:" + position, "-vsync", "passthrough",
                           "-c:v", "ppm", "-f", "image2pipe", "-"});
    std::vector<TimedFrame> frames;
    std::size_t offset = 0;
    std::vector<double> times = ffprobeNumbers(path, "v:" + position, "packet=pts_time");
    std::ranges::sort(times);
    for (const double time : times) {
        frames.push_back({time, frameFromPPM(images, offset)});
    }
    if (offset != images.size()) {
        throw std::runtime_error(path + ": more frames than times");
    }
    return frames;
}

DecodedSound decodedSound(const std::string& path, int audioTrack) {
    const std::string position = std::to_string(audioTrack);
    const std::string bytes =
        runTool("ffmpeg", {"-v", "error", "-i", path, "-map", "0:a:" + position, "-ac", "1", "-ar",
                           std::to_string(DecodedSound::sampleRate), "-f", "s16le", "-"});
    std::vector<std::int16_t> samples(bytes.size() / sizeof(std::int16_t));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(std::int16_t));
    return {ffprobeNumbers(path, "a:" + position, "stream=start_time").at(0), std::move(samples)};
}

std::vector<double> DecodedSound::window(double seconds) const {
    std::vector<double> window(windowLength);
    const std::int64_t begin = std::llround((seconds - start_) * sampleRate) - windowLength / 2;
    for (std::int64_t position = std::max<std::int64_t>(begin, 0);
         position < std::min(begin + windowLength, std::ssize(samples_)); ++position) {
        window[static_cast<std::size_t>(position - begin)] = samples_[static_cast<std::size_t>(position)];
    }
    return window;
}

double DecodedSound::amplitude(double frequency, double seconds) const {
    std::complex<double> sum;
    double phase = 0;
    for (const double sample : window(seconds)) {
        sum += std::polar(sample, phase);
        phase += 2 * std::numbers::pi * frequency / sampleRate;
    }
    return 2 * std::abs(sum) / windowLength;
}

int DecodedSound::peak(double seconds) const {
    const auto [least, most] = std::ranges::minmax(window(seconds));
    return static_cast<int>(std::max(-least, most));
}

double DecodedSound::onset(double frequency, double seconds, double level) const {
    for (double time = seconds; time < end(); time += 0.001) {
        if (amplitude(frequency, time) >= level / 2) {
            return time;
        }
    }
    throw std::runtime_error("no tone");
}

} // namespace corvanta::test
