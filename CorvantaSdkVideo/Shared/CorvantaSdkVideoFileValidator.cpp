#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <platform/FileManager.hpp>
#include <platform/MimeTypes.hpp>

namespace corvanta {

namespace {

using Reason = CorvantaSdkVideoError::InvalidInputFilesReason;

bool isVideo(const URL& url) {
    return isAudiovisual(mimeTypeForExtension(url.pathExtension()).value_or("application/octet-stream"));
}

} // namespace

void CorvantaSdkVideoFileValidator::validateFileAt(const URL& url) const {
    if (!FileManager::fileExists(url.path())) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::notFoundVideo);
    }
    if (!isVideo(url)) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::invalidFile);
    }
}

void CorvantaSdkVideoFileValidator::validateResolution(std::optional<double> component) const {
    if (component && !(minimumSupportedResolutionDimension <= *component)) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::invalidResolution);
    }
}

void CorvantaSdkVideoFileValidator::validateVideosExistence(const std::vector<URL>& videos,
                                                            std::size_t minVideosCount) const {
    if (videos.size() < minVideosCount) {
        throw CorvantaSdkVideoError(Reason::notEnoughVideos);
    }
    for (const URL& video : videos) {
        if (!FileManager::fileExists(video.path())) {
            throw CorvantaSdkVideoError(Reason::inputContainsNonExistingFiles);
        }
    }
}

} // namespace corvanta
