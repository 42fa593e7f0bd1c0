#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <tuple>
#include <utility>

namespace corvanta {

CorvantaSdkVideoTrackInformation::CorvantaSdkVideoTrackInformation(
    std::int64_t index_, std::int64_t width_, std::int64_t height_, std::string codec_, std::string codecTag_,
    std::string pixelFormat_, std::int64_t bitRate_, std::string frameRate_, std::int64_t rotation_,
    std::int64_t durationMillis_)
    : index(index_), width(width_), height(height_), rotatedWidth(width_), rotatedHeight(height_),
      codec(std::move(codec_)), codecTag(std::move(codecTag_)), pixelFormat(std::move(pixelFormat_)),
      bitRate(bitRate_), frameRate(std::move(frameRate_)), rotation(rotation_),
      durationMillis(durationMillis_) {
    if (rotation == 90 || rotation == 270) {
        std::swap(rotatedWidth, rotatedHeight);
    }
}

bool operator==(const CorvantaSdkVideoTrackInformation& left, const CorvantaSdkVideoTrackInformation& right) {
    const auto compared = [](const CorvantaSdkVideoTrackInformation& track) {
        return std::tie(track.width, track.height, track.rotatedWidth, track.rotatedHeight, track.codec,
                        track.codecTag, track.pixelFormat, track.frameRate, track.rotation);
    };
    return compared(left) == compared(right);
}

bool operator==(const CorvantaSdkVideoAudioTrackInformation& left,
                const CorvantaSdkVideoAudioTrackInformation& right) {
    const auto compared = [](const CorvantaSdkVideoAudioTrackInformation& track) {
        return std::tie(track.codec, track.codecTag, track.sampleFormat, track.sampleRate, track.channels,
                        track.channelLayout);
    };
    return compared(left) == compared(right);
}

CorvantaSdkVideoInformation::CorvantaSdkVideoInformation(
    URL url_, std::int64_t size_, std::int64_t durationMillis_, std::string format_,
    std::vector<CorvantaSdkVideoTrackInformation> videos_,
    std::vector<CorvantaSdkVideoAudioTrackInformation> audios_, Orientation orientation_,
    VideoSize videoSize_)
    : path(url_.absoluteString()), size(size_), durationMillis(durationMillis_), format(std::move(format_)),
      videos(std::move(videos_)), audios(std::move(audios_)), url(std::move(url_)), orientation(orientation_),
      videoSize(videoSize_) {}

std::string CorvantaSdkVideoInformation::videoCodec() const {
    return videos.empty() ? "" : videos.front().codec;
}

std::string CorvantaSdkVideoInformation::audioCodec() const {
    return audios.empty() ? "" : audios.front().codec;
}

double CorvantaSdkVideoInformation::audioSampleRates() const {
    return audios.empty() ? 0.0 : static_cast<double>(audios.front().sampleRate);
}

CorvantaSdkVideoFrameRate CorvantaSdkVideoInformation::frameRate() const {
    if (videos.empty()) {
        return CorvantaSdkVideoFrameRate::unknown;
    }
    return CorvantaSdkVideoFrameRate::getValue(videos.front().frameRate);
}

std::int64_t CorvantaSdkVideoInformation::rotation() const {
    return videos.empty() ? 0 : videos.front().rotation;
}

double totalSeconds(const std::vector<CorvantaSdkVideoInformation>& files) {
    double seconds = 0;
    for (const CorvantaSdkVideoInformation& file : files) {
        seconds += static_cast<double>(file.durationMillis) / 1000;
    }
    return seconds;
}

} // namespace corvanta
