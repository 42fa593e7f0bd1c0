#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>

#include <cstdint>
#include <optional>
#include <utility>

namespace corvanta {

/// A wish for one frame of a video.
class CorvantaSdkVideoThumbnailInputVideo {
  public:
    /// `positionMillis` is in milliseconds; `position()` gives seconds. An absent size keeps the aspect.
    CorvantaSdkVideoThumbnailInputVideo(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output,
                                        double positionMillis, std::optional<std::int64_t> width,
                                        std::optional<std::int64_t> height)
        : input_(std::move(input)), output_(std::move(output)), position_(positionMillis / 1000.0),
          width_(width), height_(height) {}

    /// The same wish for another file.
    CorvantaSdkVideoThumbnailInputVideo of(CorvantaSdkVideoFile file) const {
        CorvantaSdkVideoThumbnailInputVideo other = *this;
        other.input_ = std::move(file);
        return other;
    }

    const CorvantaSdkVideoFile& input() const { return input_; }
    const CorvantaSdkVideoFileDescriptor& output() const { return output_; }
    /// Seconds.
    double position() const { return position_; }
    /// Pixels.
    std::optional<std::int64_t> width() const { return width_; }
    std::optional<std::int64_t> height() const { return height_; }

  private:
    CorvantaSdkVideoFile input_;
    CorvantaSdkVideoFileDescriptor output_;
    double position_;
    std::optional<std::int64_t> width_;
    std::optional<std::int64_t> height_;
};

/// Where the thumbnail lies.
struct CorvantaSdkVideoThumbnailResult {
    URL generatedThumbnailURL;
};

} // namespace corvanta
