#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoMergeTracks.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <cstdint>
#include <optional>
#include <vector>

/// What the output tracks of a merge are made of: the selections of a request, or the default for a request
/// without any, resolved against the probed files.
namespace corvanta {

/// One file's share in an output video track. Points into the list of files that it was made from.
struct VideoItem {
    const CorvantaSdkVideoInformation* videoInfo;
    /// Null when this file has no stream for this track.
    const CorvantaSdkVideoTrackInformation* trackInfo;
};

/// One output video track.
struct VideoTrack {
    /// Pixels.
    std::int64_t width;
    std::int64_t height;
    /// In playing order, at least one.
    std::vector<VideoItem> tracks;
};

/// One file's share in an output audio track. Points into the list of files that it was made from.
struct AudioItem {
    const CorvantaSdkVideoInformation* videoInfo;
    /// Null when this file has no stream for this track.
    const CorvantaSdkVideoAudioTrackInformation* trackInfo;
};

/// One output audio track.
struct AudioTrack {
    /// In playing order, at least one.
    std::vector<AudioItem> tracks;
};

/// Without selections (`data`), output track number i joins the i-th video track of every file. An entry
/// whose file is not in the list is dropped, and so is a track without entries; an entry whose stream is not
/// in its file stays, without a stream.
///
/// A track's own size goes before `width` and `height`, which are pixels and lose their fraction. A side
/// given nowhere follows the largest sides of the track's streams: alone, it keeps their aspect. Ends the
/// process if a size can't be converted or computed.
std::vector<VideoTrack> convertVideoInput(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                          const std::vector<CorvantaSdkVideoMergeVideoTrack>& data,
                                          std::optional<double> width, std::optional<double> height);

/// The same for audio tracks, which have no size.
std::vector<AudioTrack> convertAudioInput(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                          const std::vector<CorvantaSdkVideoMergeAudioTrack>& data);

} // namespace corvanta
