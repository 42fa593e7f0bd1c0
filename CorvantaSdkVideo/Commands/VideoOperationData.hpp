#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoMergeTracks.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFrameRate.hpp>
#include <platform/URL.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {

/// What a concat joins.
struct VideoConcatData {
    std::vector<URL> videos;
};

/// What a merge joins, and how.
struct VideoMergeData {
    /// What is stored of it: all but the videos, which are stored as input files.
    struct SerializableMergeData {
        std::optional<double> width;
        std::optional<double> height;
        std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks;
        std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks;
        /// The raw value of a frame rate.
        std::string framesRate;
    };

    std::vector<URL> videos;
    /// Pixels.
    std::optional<double> width;
    std::optional<double> height;
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::thirtyFps;
    /// Empty: every track of every file.
    std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks;
    std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks;

    SerializableMergeData serializable() const;

    friend bool operator==(const VideoMergeData&, const VideoMergeData&) = default;
};

/// What an encode reads, and what it keeps of it.
struct VideoEncodingData {
    /// What is stored of it: all but the input file.
    struct SerializableEncodingData {
        std::optional<double> width;
        std::optional<double> height;
        std::vector<CorvantaSdkVideoEncodeVideoEntry> videoTracks;
        std::vector<std::int64_t> audioTracks;
        /// The raw value of a frame rate.
        std::string framesRate;
    };

    URL inputFileURL;
    /// Pixels.
    std::optional<double> width;
    std::optional<double> height;
    /// Empty: every track of the file.
    std::vector<CorvantaSdkVideoEncodeVideoEntry> videoTracks;
    /// Stream indexes.
    std::vector<std::int64_t> audioTracks;
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::thirtyFps;

    SerializableEncodingData serializable() const;
};

/// The JSON text of a stored form; absent if a size is no finite number.
std::optional<std::string> jsonRepresentation(const VideoMergeData::SerializableMergeData& data);
std::optional<std::string> jsonRepresentation(const VideoEncodingData::SerializableEncodingData& data);

/// Reads a stored form back. An absent text, one that is no JSON, and a required key that is missing or of
/// another type give nothing.
template <typename Serializable>
std::optional<Serializable> decode(const std::optional<std::string>& json);

template <>
std::optional<VideoMergeData::SerializableMergeData> decode(const std::optional<std::string>& json);
template <>
std::optional<VideoEncodingData::SerializableEncodingData> decode(const std::optional<std::string>& json);

} // namespace corvanta
