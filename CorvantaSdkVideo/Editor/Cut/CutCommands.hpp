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

/// Puts the joined pictures and the sound of the ranges together. `soundTrack` is the sound's number among
/// the source's tracks.
std::string finishCutCommand(const std::string& pictures, const std::string& source,
                             std::optional<int> soundTrack,
                             const std::vector<CorvantaSdkVideoTimeRange>& ranges, float volume,
                             const std::string& output);

} // namespace corvanta
