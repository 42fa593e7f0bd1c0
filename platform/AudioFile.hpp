#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace corvanta {

/// Reads the samples of a sound file. One thread at a time.
class AudioFileReader {
  public:
    /// Throws PlatformError if the file can't be opened or is no sound file.
    explicit AudioFileReader(const std::string& path);
    AudioFileReader(const AudioFileReader&) = delete;
    AudioFileReader& operator=(const AudioFileReader&) = delete;
    ~AudioFileReader();

    /// Hertz.
    int sampleRate() const;
    int channels() const;
    /// Sample frames.
    std::int64_t length() const;

    /// Reads the next sample frames, interleaved and scaled to -1...1, and gives how many there were; fewer
    /// than asked for only at the end. Throws PlatformError.
    std::int64_t read(std::span<float> samples);

  private:
    friend class AudioFileWriter;
    struct Context;
    std::unique_ptr<Context> context_;
};

/// Writes samples to a sound file in Apple's Core Audio Format. One thread at a time.
class AudioFileWriter {
  public:
    /// Makes the file, with the rate, the channels and the sample format of `like`. Throws PlatformError.
    AudioFileWriter(const std::string& path, const AudioFileReader& like);
    AudioFileWriter(const AudioFileWriter&) = delete;
    AudioFileWriter& operator=(const AudioFileWriter&) = delete;
    ~AudioFileWriter();

    /// Appends interleaved samples, scaled to -1...1; what lies beyond is clipped. Throws PlatformError.
    void write(std::span<const float> samples);

  private:
    struct Context;
    std::unique_ptr<Context> context_;
};

} // namespace corvanta
