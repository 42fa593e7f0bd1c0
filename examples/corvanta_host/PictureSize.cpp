#include "PictureSize.hpp"

#include "Failures.hpp"
#include "Values.hpp"

#include <algorithm>
#include <cmath>

using namespace corvanta;

namespace {

double even(double side) { return side - std::fmod(side, 2); }

// The side that goes with `given` in the shape of `across` by `along`.
double otherSide(double given, double along, double across, const char* option) {
    const double exact = std::floor(given * across / along);
    const double side = even(exact);
    if (side < leastSide) {
        throw UsageError(
            fmt::format("the other side would have {} pixels, and {} at least are needed: give {} too", exact,
                        leastSide, option));
    }
    return side;
}

} // namespace

void requireSizes(const std::vector<CorvantaSdkVideoInformation>& files) {
    for (const CorvantaSdkVideoInformation& file : files) {
        for (const CorvantaSdkVideoTrackInformation& track : file.videos) {
            if (track.width <= 0 || track.height <= 0) {
                throw UsageError(file.url.path() +
                                 " doesn't tell the size of its picture: give --width and --height");
            }
        }
    }
}

PictureSize completed(PictureSize size, const std::vector<CorvantaSdkVideoInformation>& files) {
    double width = 0;
    double height = 0;
    for (const CorvantaSdkVideoInformation& file : files) {
        if (file.videos.size() > 1) {
            // Each track has a shape of its own.
            return size;
        }
        for (const CorvantaSdkVideoTrackInformation& track : file.videos) {
            width = std::max(width, static_cast<double>(track.rotatedWidth));
            height = std::max(height, static_cast<double>(track.rotatedHeight));
        }
    }
    if (width > 0 && size.width && !size.height) {
        size.height = otherSide(*size.width, width, height, "--height");
    } else if (height > 0 && size.height && !size.width) {
        size.width = otherSide(*size.height, height, width, "--width");
    }
    return size;
}

void hintAtUprightClips(const Console& console, const std::vector<CorvantaSdkVideoInformation>& files) {
    constexpr std::int64_t upright = -90;
    const CorvantaSdkVideoInformation* first = nullptr;
    VideoSize largest;
    for (const CorvantaSdkVideoInformation& file : files) {
        if (file.rotation() == upright) {
            first = first == nullptr ? &file : first;
            largest.width = std::max(largest.width, file.videoSize.width);
            largest.height = std::max(largest.height, file.videoSize.height);
        }
    }
    if (first != nullptr && largest.width < largest.height) {
        console.note(fmt::format(
            "hint: {} was taken upright and will be small in a wide frame; --width {} --height {} "
            "gives an upright one",
            first->url.path(), even(largest.width), even(largest.height)));
    }
}
