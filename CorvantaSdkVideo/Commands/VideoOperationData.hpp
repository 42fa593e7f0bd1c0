#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEncoding.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFrameRate.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoMergeTracks.hpp>
#include <platform/URL.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {

/// What a concat joins.
struct VideoConcatData {
    /// What is stored of it: all but the videos, which are stored as input files. Nothing, unless a join made
    /// the request.
    struct SerializableConcatData {
        std::optional<std::string> joinExtension;
    };

    std::vector<URL> videos;
    /// For a join: the output's extension. All tracks are joined then, with the tags of the first file, and
    /// the files are compared as a join does it.
    std::optional<std::string> joinExtension = {};

    SerializableConcatData serializable() const { return {joinExtension}; }
    /// From the JSON text of the stored form; one that can't be read is no join's.
    static VideoConcatData fromStored(std::vector<URL> videos, const std::optional<std::string>& json);
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
        std::optional<CorvantaSdkVideoEncoding> encoding = {};
        bool isJoin = false;
    };

    std::vector<URL> videos;
    /// Pixels.
    std::optional<double> width;
    std::optional<double> height;
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::thirtyFps;
    /// Empty: as many output tracks of the kind as the richest file has.
    std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks;
    std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks;
    std::optional<CorvantaSdkVideoEncoding> encoding = {};
    /// Whether a join made the request: the tags of the first file are kept then, and tracks that state no
    /// length are measured.
    bool isJoin = false;

    SerializableMergeData serializable() const;
    /// From the JSON text of the stored form; nothing if it can't be read.
    static std::optional<VideoMergeData> fromStored(std::vector<URL> videos,
                                                    const std::optional<std::string>& json);

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
        std::optional<CorvantaSdkVideoEncoding> encoding = {};
    };

    URL inputFileURL;
    /// Pixels.
    std::optional<double> width = {};
    std::optional<double> height = {};
    /// Empty: every video track of the file.
    std::vector<CorvantaSdkVideoEncodeVideoEntry> videoTracks = {};
    /// Stream indexes. Empty: every audio track of the file.
    std::vector<std::int64_t> audioTracks = {};
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::thirtyFps;
    std::optional<CorvantaSdkVideoEncoding> encoding = {};

    SerializableEncodingData serializable() const;
    /// From the JSON text of the stored form; nothing if it can't be read.
    static std::optional<VideoEncodingData> fromStored(URL inputFile, const std::optional<std::string>& json);
};

/// The JSON text of a stored form or of a track record. Absent for a number that isn't finite and for a text
/// that isn't UTF-8.
template <typename Encodable>
std::optional<std::string> jsonRepresentation(const Encodable& value);

/// Reads a stored form or a track record back. An absent text, one that is no JSON, and a required key that
/// is missing or of another type give nothing.
template <typename Decodable>
std::optional<Decodable> decode(const std::optional<std::string>& json);

} // namespace corvanta
