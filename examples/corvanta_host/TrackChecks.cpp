#include "TrackChecks.hpp"

#include "Failures.hpp"
#include "Values.hpp"

#include <optional>
#include <string>

using namespace corvanta;

namespace {

void requireTrackSide(std::optional<std::int64_t> side) {
    requireSideWithin("a track", side, leastTrackSide, mostTrackSide);
    if (side && *side % 2 != 0) {
        throw UsageError("a track takes an even number of pixels, not " + std::to_string(*side));
    }
}

template <typename Track>
void requireStream(const CorvantaSdkVideoInformation& file, const std::vector<Track>& tracks,
                   const char* kind, std::int64_t index) {
    std::string known;
    for (const Track& track : tracks) {
        if (track.index == index) {
            return;
        }
        known += (known.empty() ? "" : ", ") + std::to_string(track.index);
    }
    throw UsageError(file.url.path() + " has no " + kind + " stream " + std::to_string(index) +
                     (known.empty() ? "" : ": its " + std::string(kind) + " streams are " + known));
}

const CorvantaSdkVideoInformation& fileOf(const CorvantaSdkVideoMergeMediaEntry& entry,
                                          const std::vector<CorvantaSdkVideoInformation>& files) {
    const auto count = static_cast<std::int64_t>(files.size());
    if (entry.fileIndex >= count) {
        throw UsageError("there is no file " + std::to_string(entry.fileIndex) + ": the " +
                         std::to_string(count) + " files are counted from 0");
    }
    return files[static_cast<std::size_t>(entry.fileIndex)];
}

} // namespace

void requireStreams(const std::vector<CorvantaSdkVideoMergeVideoTrack>& videoTracks,
                    const std::vector<CorvantaSdkVideoMergeAudioTrack>& audioTracks,
                    const std::vector<CorvantaSdkVideoInformation>& files) {
    for (const auto& track : videoTracks) {
        requireTrackSide(track.width);
        requireTrackSide(track.height);
        for (const auto& entry : track.tracks) {
            const auto& file = fileOf(entry, files);
            requireStream(file, file.videos, "video", entry.entryIndex);
        }
    }
    for (const auto& track : audioTracks) {
        for (const auto& entry : track.tracks) {
            const auto& file = fileOf(entry, files);
            requireStream(file, file.audios, "audio", entry.entryIndex);
        }
    }
}

void requireStreams(const std::vector<CorvantaSdkVideoEncodeVideoEntry>& videoTracks,
                    const std::vector<std::int64_t>& audioTracks, const CorvantaSdkVideoInformation& file) {
    for (const auto& entry : videoTracks) {
        requireTrackSide(entry.width);
        requireTrackSide(entry.height);
        requireStream(file, file.videos, "video", entry.entryIndex);
    }
    for (const std::int64_t index : audioTracks) {
        requireStream(file, file.audios, "audio", index);
    }
}
