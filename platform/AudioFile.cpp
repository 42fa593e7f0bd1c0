#include <platform/AudioFile.hpp>

#include <platform/Errors.hpp>

#include <sndfile.hh>

namespace corvanta {

namespace {

PlatformError failure(const SndfileHandle& file) {
    constexpr int unknown = -1;
    return {"AudioFile", file.error() != 0 ? file.error() : unknown};
}

} // namespace

struct AudioFileReader::Context {
    SndfileHandle file;
};

struct AudioFileWriter::Context {
    SndfileHandle file;
};

AudioFileReader::AudioFileReader(const std::string& path)
    : context_(std::make_unique<Context>(Context{SndfileHandle(path)})) {
    if (!context_->file) {
        throw failure(context_->file);
    }
}

AudioFileReader::~AudioFileReader() = default;

int AudioFileReader::sampleRate() const { return context_->file.samplerate(); }

int AudioFileReader::channels() const { return context_->file.channels(); }

std::int64_t AudioFileReader::length() const { return context_->file.frames(); }

std::int64_t AudioFileReader::read(std::span<float> samples) {
    const std::int64_t frames =
        context_->file.readf(samples.data(), static_cast<sf_count_t>(samples.size()) / channels());
    if (context_->file.error() != 0) {
        throw failure(context_->file);
    }
    return frames;
}

AudioFileWriter::AudioFileWriter(const std::string& path, const AudioFileReader& like) {
    const SndfileHandle& model = like.context_->file;
    const int format = SF_FORMAT_CAF | (model.format() & SF_FORMAT_SUBMASK);
    context_ = std::make_unique<Context>(
        Context{SndfileHandle(path, SFM_WRITE, format, model.channels(), model.samplerate())});
    if (!context_->file) {
        throw failure(context_->file);
    }
    context_->file.command(SFC_SET_CLIPPING, nullptr, SF_TRUE);
}

AudioFileWriter::~AudioFileWriter() = default;

void AudioFileWriter::write(std::span<const float> samples) {
    const auto count = static_cast<sf_count_t>(samples.size());
    if (context_->file.write(samples.data(), count) != count) {
        throw failure(context_->file);
    }
}

} // namespace corvanta
