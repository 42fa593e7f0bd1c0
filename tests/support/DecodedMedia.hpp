#pragma once

#include "support/MediaFixtures.hpp"

#include <cstdint>

/// Whole decoded tracks, for tests of when things happen.
namespace corvanta::test {

struct TimedFrame {
    /// Seconds on the file's time line.
    double time = 0;
    Frame frame;
};

/// All frames of a video track, as they are shown.
std::vector<TimedFrame> decodedVideo(const std::string& path, int videoTrack = 0);

/// A mixed-down audio track.
class DecodedSound {
  public:
    static constexpr int sampleRate = 8000;

    DecodedSound(double start, std::vector<std::int16_t> samples)
        : start_(start), samples_(std::move(samples)) {}

    /// The amplitude of one frequency, a multiple of 50 Hz, in the 20 ms around `seconds`; outside the track
    /// there is silence. ffmpeg's tones have 4096.
    double amplitude(double frequency, double seconds) const;

    /// The loudest sample in the 20 ms around `seconds`.
    int peak(double seconds) const;

    /// When, at or after `seconds`, the frequency first reaches half of `level`. Throws std::runtime_error if
    /// it never does.
    double onset(double frequency, double seconds, double level) const;

    double end() const { return start_ + static_cast<double>(samples_.size()) / sampleRate; }

  private:
    /// The samples of the 20 ms around `seconds`.
    std::vector<double> window(double seconds) const;

    double start_;
    std::vector<std::int16_t> samples_;
};

DecodedSound decodedSound(const std::string& path, int audioTrack = 0);

} // namespace corvanta::test
