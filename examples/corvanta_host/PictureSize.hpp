#pragma once

#include "Console.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <optional>
#include <vector>

/// What a merge or an encode is asked for; an absent side follows from the files.
struct PictureSize {
    std::optional<double> width;
    std::optional<double> height;
};

/// Throws UsageError for a picture without a size: dividing by it would end the process.
void requireSizes(const std::vector<corvanta::CorvantaSdkVideoInformation>& files);

/// A side given alone leaves the other one to a division, whose odd results ffmpeg refuses. Gives both, even,
/// where all files have one shape each. Throws UsageError if that makes the other side too small.
PictureSize completed(PictureSize size, const std::vector<corvanta::CorvantaSdkVideoInformation>& files);

/// Tells of clips that a camera held upright has written with a turn of -90 degrees, whose picture is small
/// in a frame of the files' own sizes, and of the sizes to give.
void hintAtUprightClips(const Console& console,
                        const std::vector<corvanta::CorvantaSdkVideoInformation>& files);
