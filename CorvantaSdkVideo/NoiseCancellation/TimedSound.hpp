#pragma once

#include <platform/AudioFile.hpp>
#include <platform/SoundTimes.hpp>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace corvanta {

/// Reads a mono sound on the time line of the file that it was extracted from: silence stands where that had
/// no sound, and what overlapped is left out. One thread at a time.
class TimedSound {
  public:
    /// If the sound is of another length than its times tell, only its start is kept to: it was not decoded
    /// as it was stated. Throws PlatformError.
    TimedSound(const std::string& path, const SoundTimes& times);

    const AudioFileReader& file() const { return file_; }
    /// Samples in all.
    std::int64_t length() const { return length_; }

    /// Reads the next samples and gives how many there were; fewer than asked for only at the end. Throws
    /// PlatformError.
    std::int64_t read(std::span<float> samples);

  private:
    struct Break {
        std::int64_t at;
        std::int64_t silence;
    };

    std::int64_t readUpTo(std::int64_t end, std::span<float> samples);
    void skip(std::int64_t count);

    AudioFileReader file_;
    std::vector<Break> breaks_;
    std::size_t nextBreak_ = 0;
    std::int64_t position_ = 0;
    std::int64_t silence_ = 0;
    std::int64_t length_;
};

} // namespace corvanta
