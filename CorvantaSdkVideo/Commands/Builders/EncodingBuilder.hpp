#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// Builds a request that re-encodes one video. Set what is wanted, then build; later builds see later values.
/// For one caller at a time.
class EncodingBuilder {
  public:
    EncodingBuilder(CorvantaSdkVideoFile video, CorvantaSdkVideoFileDescriptor output,
                    std::shared_ptr<CorvantaSdkVideoRequestEngine> engine, std::shared_ptr<VideoStore> store);

    /// The request's identity: building twice gives two objects of one id.
    const UUID id;
    const CorvantaSdkVideoFile video;
    const CorvantaSdkVideoFileDescriptor output;
    const std::shared_ptr<CorvantaSdkVideoRequestEngine> engine;
    const std::shared_ptr<VideoStore> store;

    /// Output size in pixels; with one side alone the other follows the aspect. What a merge's sizes are and
    /// do holds here as well: limits, odd sides, upright clips, and what ends the host.
    std::optional<double> width;
    std::optional<double> height;
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::thirtyFps;
    /// The video streams to keep, and the audio streams by their index; an empty list keeps every stream of
    /// its kind.
    std::vector<CorvantaSdkVideoEncodeVideoEntry> videoTracks;
    std::vector<std::int64_t> audioTracks;
    /// How picture and sound are encoded; absent: MPEG-4 Part 2 and AAC at ffmpeg's own rates. What is wrong
    /// with it, or can't be done with these inputs, fails the request when it is processed.
    std::optional<CorvantaSdkVideoEncoding> encoding;

    /// Makes the request and stores it as `idle`; an existing file at the output location is removed. Never
    /// throws: a request that could not be stored throws `operationNotFound` at `process()`.
    std::shared_ptr<CorvantaSdkVideoRequest> build() const;
};

} // namespace corvanta
