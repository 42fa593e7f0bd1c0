#pragma once

#include <platform/MediaOpening.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {

/// Pictures of one file that are taken over as they are coded. Times are ticks of the track that the join is
/// like.
struct PictureRun {
    std::string file;
    /// Whether its codec's parameters are those of the track that the join is like.
    bool isOriginal = true;
    /// When the key picture that it begins with is shown, and how much earlier that is decoded; what is shown
    /// before it is left out. An absent one begins with the file.
    std::optional<std::int64_t> entry;
    std::int64_t delay = 0;
    /// When the picture is shown that decoding ends before; an absent one ends with the file.
    std::optional<std::int64_t> stop;
    /// Added to all times.
    std::int64_t shift = 0;
    /// When its first picture is shown instead, with the shift: for a cut that begins between two pictures.
    std::optional<std::int64_t> firstShown;
    /// When its pictures must be shown, without the shift; empty if that isn't known.
    std::vector<std::int64_t> shown;
};

/// Writes an mp4 file of one video track: the runs one after the other, with the display matrix of the first
/// video track of the file `like` and a further turn of `degrees`, a multiple of 90, counter-clockwise as
/// ffmpeg counts them in its "rotate" tag. H.264 and HEVC of different parameters come to stand in one track:
/// for H.264 their parameter sets need ids of their own, for HEVC each key picture carries its own.
///
/// Runs that aren't original must be coded without pictures that are shown before earlier ones, if any is
/// original. Throws PlatformError if a file can't be read or written, if pictures aren't those that `shown`
/// tells, or if their times don't fit into one track; the output is not whole then.
void joinPictures(const std::string& like, const std::vector<PictureRun>& runs, const std::string& output,
                  int degrees = 0, const OpenMedia::Options& options = {});

} // namespace corvanta
