#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <string>

namespace corvanta {

/// What keeps `video` from being joined to `reference` by stream copy, in words: "the width of video
/// track 0 is 320 in b.mp4 and 160 in a.mp4". Empty if there is no difference of the kind.
std::string formatDifference(const CorvantaSdkVideoInformation& reference,
                             const CorvantaSdkVideoInformation& video);
std::string videoTracksDifference(const CorvantaSdkVideoInformation& reference,
                                  const CorvantaSdkVideoInformation& video);
std::string audioTracksDifference(const CorvantaSdkVideoInformation& reference,
                                  const CorvantaSdkVideoInformation& video);

} // namespace corvanta
