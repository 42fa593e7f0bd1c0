#pragma once

#include <platform/URL.hpp>

#include <memory>
#include <optional>

namespace corvanta {

/// The linear part of a track's display matrix: a point (x, y) goes to (a x + c y, b x + d y).
struct AffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;

    friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

/// Reads what a media file says of itself, in process and without decoding. One thread at a time.
class AssetReader {
  public:
    /// Opens the file at `url`'s path. Throws PlatformError if it can't be opened or is no media file.
    explicit AssetReader(const URL& url);
    AssetReader(AssetReader&&) noexcept;
    AssetReader& operator=(AssetReader&&) noexcept;
    ~AssetReader();

    /// Seconds. Throws PlatformError if the file states no duration and none can be found.
    double duration();

    /// The display transform of the first video track, the identity if it carries none; nothing without such
    /// a track.
    std::optional<AffineTransform> firstVideoTrackTransform();

  private:
    struct Context;
    std::unique_ptr<Context> context_;
};

} // namespace corvanta
