#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoThumbnailInputVideo.hpp>
#include <platform/Task.hpp>

namespace corvanta {

class CorvantaSdkVideoThumbnailGenerator {
  public:
    virtual ~CorvantaSdkVideoThumbnailGenerator() = default;

    /// Writes one frame as a JPEG file, replacing an older one. Throws CorvantaSdkVideoError; a duration that
    /// can't be read throws the asset reader's own PlatformError. The generator must outlive the task.
    virtual Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoThumbnailInputVideo video) = 0;
};

} // namespace corvanta
