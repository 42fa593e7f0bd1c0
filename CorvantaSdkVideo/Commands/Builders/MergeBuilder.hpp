#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// Builds a request that joins unlike videos by re-encoding. Set what is wanted, then build; later builds see
/// later values. For one caller at a time.
class MergeBuilder {
  public:
    MergeBuilder(std::vector<CorvantaSdkVideoFile> videos, CorvantaSdkVideoFileDescriptor output,
                 std::shared_ptr<CorvantaSdkVideoRequestEngine> engine, std::shared_ptr<VideoStore> store);

    /// The request's identity: building twice gives two objects of one id.
    const UUID id;
    const std::vector<CorvantaSdkVideoFile> videos;
    const CorvantaSdkVideoFileDescriptor output;
    const std::shared_ptr<CorvantaSdkVideoRequestEngine> engine;
    const std::shared_ptr<VideoStore> store;

    /// Output size in pixels, 128 at least and 8190 at most, which the encoder takes. With one side alone the
    /// other follows the largest inputs' sides, by integer division; with none the output is as large as the
    /// largest. An odd side is rounded down by ffmpeg, or fails where the picture fills it.
    ///
    /// The inputs' sides are the stored ones, swapped for a rotation of 90 or 270 only: a phone's upright
    /// clip states -90, and becomes small in a wide frame unless both sides are given.
    ///
    /// Beyond 64-bit arithmetic, `process()` ends the host: with a side that is no number or no 64-bit
    /// integer, with one whose product with the inputs' sides is none, and with one side alone for pictures
    /// of 0x0.
    std::optional<double> width;
    std::optional<double> height;
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::thirtyFps;
    /// Empty: as many output tracks as the richest input has.
    std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks;
    std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks;
    /// How picture and sound are encoded; absent: MPEG-4 Part 2 and AAC at ffmpeg's own rates. What is wrong
    /// with it, or can't be done with these inputs, fails the request when it is processed.
    std::optional<CorvantaSdkVideoEncoding> encoding;

    /// Makes the request and stores it as `idle`; an existing file at the output location is removed. Never
    /// throws: a request that could not be stored throws `operationNotFound` at `process()`.
    std::shared_ptr<CorvantaSdkVideoRequest> build() const;
};

} // namespace corvanta
