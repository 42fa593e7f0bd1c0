#pragma once

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <platform/URL.hpp>

#include <cstddef>
#include <optional>
#include <vector>

namespace corvanta {

/// Checks that need no probe. Stateless, safe from any thread.
class CorvantaSdkVideoFileValidator {
  public:
    /// Pixels.
    static constexpr double minimumSupportedResolutionDimension = 128.0;

    /// Throws `notFoundVideo` if nothing is at the URL's path, `invalidFile` if its extension names neither
    /// video nor audio. The file's bytes are not looked at.
    void validateFileAt(const URL& url) const;

    /// Throws `invalidResolution` if `component` is present and below the minimum.
    void validateResolution(std::optional<double> component) const;

    /// Throws `invalidInputFiles` with `notEnoughVideos` or `inputContainsNonExistingFiles`.
    void validateVideosExistence(const std::vector<URL>& videos, std::size_t minVideosCount = 1) const;

    /// `invalidResolution`, with what the side is and must be.
    static CorvantaSdkVideoError tooSmall(double component);
};

} // namespace corvanta
