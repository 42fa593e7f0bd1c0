#include <CorvantaSdkVideo/Commands/Concat/ConcatInputValidator.hpp>

#include <CorvantaSdkVideo/Commands/Concat/ConcatDifferences.hpp>
#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <platform/Cancellation.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace corvanta {

namespace {

using Reason = CorvantaSdkVideoError::InvalidInputFilesReason;

// A join goes by the places of streams in their files. Covers behind all tracks move none of them.
std::vector<std::int64_t> coversAmongTracks(const CorvantaSdkVideoInformation& video) {
    const auto hasTrackBehind = [&](std::int64_t cover) {
        const auto isBehind = [cover](const auto& track) { return track.index > cover; };
        return std::ranges::any_of(video.videos, isBehind) || std::ranges::any_of(video.audios, isBehind);
    };
    std::vector<std::int64_t> covers;
    std::ranges::copy_if(video.covers, std::back_inserter(covers), hasTrackBehind);
    return covers;
}

void compare(const CorvantaSdkVideoInformation& reference, const CorvantaSdkVideoInformation& video) {
    if (video.format != reference.format) {
        throw CorvantaSdkVideoError(Reason::differentFormats, formatDifference(reference, video));
    }
    if (video.videos != reference.videos) {
        throw CorvantaSdkVideoError(Reason::differentVideoTracks, videoTracksDifference(reference, video));
    }
    if (coversAmongTracks(video) != coversAmongTracks(reference)) {
        throw CorvantaSdkVideoError(Reason::differentVideoTracks, "a cover among the tracks of " +
                                                                      reference.url.path() + " or " +
                                                                      video.url.path() + " moves them");
    }
    if (video.audios != reference.audios) {
        throw CorvantaSdkVideoError(Reason::differentAudioTracks, audioTracksDifference(reference, video));
    }
}

} // namespace

ConcatInputValidator::ConcatInputValidator(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                                           std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
                                           VideosInformationGenerator videosInformationGenerator,
                                           CorvantaSdkVideoFileValidator videosValidator)
    : commandExecutor_(std::move(commandExecutor)), credentialsManager_(std::move(credentialsManager)),
      videosInformationGenerator_(std::move(videosInformationGenerator)), videosValidator_(videosValidator) {}

Task<bool> ConcatInputValidator::canProcessConcatWith(std::vector<URL> videos) const {
    const std::optional<CorvantaSdkVideoError> obstacle = co_await obstacleToConcat(std::move(videos));
    co_return !obstacle;
}

Task<std::optional<CorvantaSdkVideoError>>
ConcatInputValidator::obstacleToConcat(std::vector<URL> videos) const {
    requireLogin(*credentialsManager_);
    videosValidator_.validateVideosExistence(videos, 2);
    std::optional<CorvantaSdkVideoError> obstacle;
    try {
        co_await validateVideosForConcat(std::move(videos));
    } catch (const CorvantaSdkVideoError& error) {
        Logger::logError(Event::compareVideo, EventMessage::compareFailed(error));
        obstacle = error;
    } catch (const std::exception& error) {
        if (isCancellation(error)) {
            throw;
        }
        Logger::logError(Event::compareVideo, EventMessage::compareFailed(error));
        obstacle.emplace(CorvantaSdkVideoError::getInformationFailed, detailsOf(error));
    }
    co_return obstacle;
}

Task<> ConcatInputValidator::validateVideosForConcat(std::vector<URL> videos) const {
    const auto information = co_await videosInformationGenerator_.generateAssetsMetadata(std::move(videos));
    if (information.empty()) {
        fatalError("A comparison needs at least one video");
    }
    for (const CorvantaSdkVideoInformation& video : information) {
        compare(information.front(), video);
    }
}

} // namespace corvanta
