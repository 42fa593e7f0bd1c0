#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>

#include <platform/FileManager.hpp>
#include <platform/MimeTypes.hpp>

#include <sstream>

namespace corvanta {

namespace {

using Reason = CorvantaSdkVideoError::InvalidInputFilesReason;

bool isVideo(const URL& url) {
    return isAudiovisual(mimeTypeForExtension(url.pathExtension()).value_or("application/octet-stream"));
}

} // namespace

void CorvantaSdkVideoFileValidator::validateFileAt(const URL& url) const {
    if (!FileManager::fileExists(url.path())) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::notFoundVideo, "there is no " + url.path());
    }
    if (!isVideo(url)) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::invalidFile,
                                    url.path() + ": its extension names neither video nor sound");
    }
}

void CorvantaSdkVideoFileValidator::validateResolution(std::optional<double> component) const {
    if (component && !(minimumSupportedResolutionDimension <= *component)) {
        throw tooSmall(*component);
    }
}

void CorvantaSdkVideoFileValidator::validateVideosExistence(const std::vector<URL>& videos,
                                                            std::size_t minVideosCount) const {
    if (videos.size() < minVideosCount) {
        throw CorvantaSdkVideoError(Reason::notEnoughVideos, std::to_string(videos.size()) + " given, " +
                                                                 std::to_string(minVideosCount) +
                                                                 " are needed");
    }
    for (const URL& video : videos) {
        if (!FileManager::fileExists(video.path())) {
            throw CorvantaSdkVideoError(Reason::inputContainsNonExistingFiles, "there is no " + video.path());
        }
    }
}

CorvantaSdkVideoError CorvantaSdkVideoFileValidator::tooSmall(double component) {
    std::ostringstream details;
    details << component << " pixels: a side has at least " << minimumSupportedResolutionDimension;
    return CorvantaSdkVideoError(CorvantaSdkVideoError::invalidResolution, details.str());
}

} // namespace corvanta
