#pragma once

#include <platform/MediaOpening.hpp>

#include <string>
#include <vector>

namespace corvanta {

/// Where a sound's samples, one behind the other, and its file's time line part. Seconds.
struct SoundBreak {
    /// How much sound lies before it.
    double at = 0;
    /// How long nothing sounds there; below zero, how much of the sound behind it has no time of its own,
    /// since the tracks overlap.
    double silence = 0;
};

/// When the samples of a file's sound play.
struct SoundTimes {
    /// In their order; a late start is one at 0.
    std::vector<SoundBreak> breaks;
    /// Seconds of sound in all packets.
    double duration = 0;
};

/// Reads all packets of the sound that ffmpeg takes from the file at `path` when none is named, without
/// decoding. Times count from the file's start, or a transport stream's picture's: what ffmpeg makes the zero
/// of a picture that it takes from the file. What its times and its samples part by less than 10 ms is not
/// told, nor are times that can't be meant: a lone one, one behind the file's end, and those of a transport
/// stream that jump back or by more than ten seconds. Nothing without sound. Throws PlatformError.
SoundTimes soundTimes(const std::string& path, OpenMedia::Options options = {});

} // namespace corvanta
