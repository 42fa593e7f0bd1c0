#pragma once

#include <platform/CodedPictures.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace corvanta {

/// A run of pictures that comes into an exact cut in one way. Times are ticks of the source's track.
struct CutPiece {
    enum class Way { copied, encoded };

    Way way = Way::encoded;
    /// When the first of its pictures is shown; one that is copied is a key picture, and what is shown before
    /// it belongs to the piece before.
    std::int64_t from = 0;
    /// Encoded: one behind the last time of showing.
    std::int64_t to = 0;
    /// Encoded: when a key picture is shown that decoding can begin at.
    std::int64_t decodeFrom = 0;
    /// Encoded: when its pictures are shown, in order. Empty where the source doesn't tell.
    std::vector<std::int64_t> shown = {};
    /// Copied: how much earlier the first one is decoded.
    std::int64_t delay = 0;
    /// Copied: when the picture is shown that decoding ends before; an absent one ends with the file.
    std::optional<std::int64_t> stop = {};
};

/// How the pictures with `start <= pts < end` come into a cut: from the first safe key picture on they are
/// copied; what lies before it is encoded anew, and so are those at the end that refer to pictures behind it.
/// Empty if there are none. Reads the surroundings of both ends alone. Throws what CodedPictures throws.
std::vector<CutPiece> planCut(CodedPictures& pictures, std::int64_t start, std::int64_t end);

/// Where the picture begins when a range is copied by ffmpeg as it is.
struct CopiedStart {
    /// Absent if no picture of the range is left.
    std::optional<std::int64_t> pts;
    bool loses = false;
};

/// ffmpeg begins with the first key picture that is decoded at `start` or later: pictures before it are lost,
/// and so is a first group whose decoding begins before.
CopiedStart copiedStart(CodedPictures& pictures, std::int64_t start, std::int64_t end);

/// One piece that is encoded as a whole, for pictures that can't be copied.
CutPiece planEncoding(CodedPictures& pictures, std::int64_t start, std::int64_t end);

/// When the pictures with `start <= pts < end` are shown, in order. Reads all of them. Throws what
/// CodedPictures throws.
std::vector<std::int64_t> shownTimes(CodedPictures& pictures, std::int64_t start, std::int64_t end);

} // namespace corvanta
