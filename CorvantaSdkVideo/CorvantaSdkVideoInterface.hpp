#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoThumbnailInputVideo.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>
#include <platform/Task.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace corvanta {

/// What the module offers to its host. Safe from any thread. Every operation that can fail throws
/// CorvantaSdkVideoError, `userNotAuthenticated` first of all, unless it says otherwise.
class CorvantaSdkVideoInterface {
  public:
    virtual ~CorvantaSdkVideoInterface() = default;

    /// Probes the files one after the other; the records come in their order.
    virtual Task<std::vector<CorvantaSdkVideoInformation>>
    getVideosInformation(std::vector<CorvantaSdkVideoFile> input) = 0;

    /// Writes the frame at `position` milliseconds as a JPEG file. An absent size keeps the aspect.
    virtual Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output,
                      double position = 1000.0, std::optional<std::int64_t> width = std::nullopt,
                      std::optional<std::int64_t> height = std::nullopt) = 0;
};

} // namespace corvanta
