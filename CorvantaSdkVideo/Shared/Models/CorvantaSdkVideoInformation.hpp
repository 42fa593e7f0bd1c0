#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFrameRate.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoPictureColor.hpp>
#include <CorvantaSdkVideo/Shared/Models/VideoSize.hpp>
#include <platform/URL.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace corvanta {

/// A video's shape on screen; a square one is `portrait`.
enum class Orientation { portrait, landscape };

/// One video stream.
struct CorvantaSdkVideoTrackInformation {
    CorvantaSdkVideoTrackInformation(std::int64_t index, std::int64_t width, std::int64_t height,
                                     std::string codec, std::string codecTag, std::string pixelFormat,
                                     std::int64_t bitRate, std::string frameRate, std::int64_t rotation,
                                     std::int64_t durationMillis);

    /// Stream index inside the file.
    std::int64_t index;
    /// Coded size in pixels.
    std::int64_t width;
    std::int64_t height;
    /// The coded size with its sides exchanged when `rotation` is exactly 90 or 270, else the coded size: a
    /// phone clip at -90 keeps its coded sides here.
    std::int64_t rotatedWidth;
    std::int64_t rotatedHeight;
    std::string codec;
    std::string codecTag;
    std::string pixelFormat;
    /// Bits per second.
    std::int64_t bitRate;
    /// The fraction as ffprobe prints it, such as "30000/1001".
    std::string frameRate;
    /// Degrees, signed, as found in the stream's side data; 0 without any.
    std::int64_t rotation;
    /// 0 when the stream states none, as in Matroska files.
    std::int64_t durationMillis;
    CorvantaSdkVideoPictureColor color = {};

    /// Compares what matters for joining by stream copy: not `index`, `bitRate`, `durationMillis` and
    /// `color`.
    friend bool operator==(const CorvantaSdkVideoTrackInformation& left,
                           const CorvantaSdkVideoTrackInformation& right);
};

/// One audio stream.
struct CorvantaSdkVideoAudioTrackInformation {
    std::int64_t index = 0;
    std::string codec;
    std::string codecTag;
    std::string sampleFormat;
    /// Bits per second.
    std::int64_t bitRate = 0;
    /// Hertz.
    std::int64_t sampleRate = 0;
    std::int64_t channels = 0;
    std::string channelLayout;
    std::int64_t durationMillis = 0;

    /// Compares what matters for joining by stream copy: not `index`, `bitRate` and `durationMillis`.
    friend bool operator==(const CorvantaSdkVideoAudioTrackInformation& left,
                           const CorvantaSdkVideoAudioTrackInformation& right);
};

/// All that is known of one file.
struct CorvantaSdkVideoInformation {
    CorvantaSdkVideoInformation(URL url, std::int64_t size, std::int64_t durationMillis, std::string format,
                                std::vector<CorvantaSdkVideoTrackInformation> videos,
                                std::vector<CorvantaSdkVideoAudioTrackInformation> audios,
                                Orientation orientation, VideoSize videoSize);

    /// The absolute text of `url`, scheme included: not a plain file path.
    std::string path;
    /// Bytes.
    std::int64_t size;
    /// Of the container.
    std::int64_t durationMillis;
    std::string format;
    /// In stream order.
    std::vector<CorvantaSdkVideoTrackInformation> videos;
    std::vector<CorvantaSdkVideoAudioTrackInformation> audios;
    /// Stream indexes of attached pictures, such as the cover of a song: they are no video tracks.
    std::vector<std::int64_t> covers = {};
    URL url;
    Orientation orientation;
    /// As displayed.
    VideoSize videoSize;

    /// Of the first track of the kind; empty, 0 or `unknown` without one.
    std::string videoCodec() const;
    std::string audioCodec() const;
    double audioSampleRates() const;
    CorvantaSdkVideoFrameRate frameRate() const;
    std::int64_t rotation() const;

    bool hasAudio() const { return !audios.empty(); }
};

/// How long all of them last, in seconds.
double totalSeconds(const std::vector<CorvantaSdkVideoInformation>& files);

} // namespace corvanta
