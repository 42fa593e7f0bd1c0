#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <cstdint>
#include <vector>

/// Throw UsageError for a selection of a stream that no file has, in whose place the module puts black or
/// silence, of a file that isn't there, which it leaves out, and of a size that the encoder doesn't take.
void requireStreams(const std::vector<corvanta::CorvantaSdkVideoMergeVideoTrack>& videoTracks,
                    const std::vector<corvanta::CorvantaSdkVideoMergeAudioTrack>& audioTracks,
                    const std::vector<corvanta::CorvantaSdkVideoInformation>& files);
void requireStreams(const std::vector<corvanta::CorvantaSdkVideoEncodeVideoEntry>& videoTracks,
                    const std::vector<std::int64_t>& audioTracks,
                    const corvanta::CorvantaSdkVideoInformation& file);
