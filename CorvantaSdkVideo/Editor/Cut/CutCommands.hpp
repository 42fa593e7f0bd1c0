#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>
#include <CorvantaSdkVideo/Editor/Cut/CutPlan.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The texts of the ffmpeg runs of an exact cut.
namespace corvanta {

/// Encodes the pictures of a piece at a quality that nobody can tell from the source's, with their times,
/// into a NUT file. If the others are copied (`likeSource`), such that both can be decoded as one track.
std::string encodePieceCommand(const std::string& input, int track, const PictureFormat& format,
                               bool likeSource, const CutPiece& piece, double decodeFromSeconds,
                               const std::string& output);

/// Whether pictures of that format can be joined with ones that are encoded here.
bool canEncodeAlike(const PictureFormat& format);

/// What the last run of a cut puts together. Track numbers are the source's.
struct CutParts {
    /// The joined pictures, and the track that they come from.
    std::string pictures;
    int pictureTrack = 0;
    std::string source;
    std::optional<int> soundTrack = {};
    /// Pictures that go with the file as a whole.
    std::vector<int> coverTracks = {};
    /// Whether the source has tags that mp4 keeps only if it is told to.
    bool hasApplicationTags = false;
    std::vector<CorvantaSdkVideoTimeRange> ranges = {};
    float volume = 1;
    std::string output;
};

/// Puts the joined pictures and the sound of the ranges together, with the tags of the source and of both
/// tracks. Chapters go; covers are kept in mp4 and mov, beside an application's own tags not.
std::string finishCutCommand(const CutParts& parts);

} // namespace corvanta
