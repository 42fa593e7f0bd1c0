#include "support/DecodedMedia.hpp"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <stdexcept>

namespace corvanta::test {

namespace {

constexpr int windowLength = DecodedSound::sampleRate / 50;

std::vector<double> ffprobeNumbers(const std::string& path, const std::string& stream,
                                   const std::string& entries) {
    std::vector<double> numbers;
    for (const std::string& line :
         wordsOf(runTool("ffprobe", {"-v", "error", "-select_streams", stream, "-show_entries", entries,
                                     "-of", "csv=print_section=0", path}))) {
        numbers.push_back(std::stod(line));
    }
    return numbers;
}

} // namespace

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

std::int16_t DecodedSound::sample(std::int64_t position) const {
    return position >= 0 && position < std::ssize(samples_) ? samples_[static_cast<std::size_t>(position)]
                                                            : std::int16_t{0};
}

std::int64_t DecodedSound::windowAround(double seconds) const {
    return std::llround((seconds - start_) * sampleRate) - windowLength / 2;
}

double DecodedSound::amplitude(double frequency, double seconds) const {
    const std::int64_t begin = windowAround(seconds);
    std::complex<double> sum;
    for (int position = 0; position < windowLength; ++position) {
        const double phase = 2 * std::numbers::pi * frequency * position / sampleRate;
        sum += std::polar(static_cast<double>(sample(begin + position)), phase);
    }
    return 2 * std::abs(sum) / windowLength;
}

int DecodedSound::peak(double seconds) const {
    const std::int64_t begin = windowAround(seconds);
    int loudest = 0;
    for (int position = 0; position < windowLength; ++position) {
        loudest = std::max(loudest, std::abs(static_cast<int>(sample(begin + position))));
    }
    return loudest;
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
