#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGeneratorImplementation.hpp>

#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <platform/AssetDuration.hpp>
#include <platform/Cancellation.hpp>
#include <platform/FileManager.hpp>

#include <sstream>
#include <string>
#include <system_error>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

Task<> validatePosition(double position, URL video) {
    const double duration = co_await assetDuration(video);
    if (!(position >= 0 && position < duration)) {
        std::ostringstream details;
        details << position << " s is not within " << video.path() << ", which ends at " << duration << " s";
        throw Error(Error::invalidPositionInVideo, details.str());
    }
}

void removeOlderThumbnail(const std::string& path) {
    if (!FileManager::fileExists(path)) {
        return;
    }
    try {
        FileManager::removeItem(path);
    } catch (const std::system_error& error) {
        throw Error(Error::unableToDeleteExistingThumbnail, error.what());
    }
}

Task<> run(std::shared_ptr<FFMPEGCommandExecutor> executor, std::string command, std::string outputPath,
           std::shared_ptr<ProgressMeter> meter) {
    co_await executor->executeMeasured(std::move(command), nullptr, std::move(meter));
    // Past the last frame ffmpeg succeeds and writes nothing.
    if (!FileManager::fileExists(outputPath)) {
        throw PlatformError("Thumbnail", 1, "there is no picture at this position");
    }
}

} // namespace

CorvantaSdkVideoThumbnailGeneratorImplementation::CorvantaSdkVideoThumbnailGeneratorImplementation(
    FFMPEGCommandGenerator commandGenerator, std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager)
    : commandGenerator_(commandGenerator), commandExecutor_(std::move(commandExecutor)),
      credentialsManager_(std::move(credentialsManager)) {}

Task<CorvantaSdkVideoThumbnailResult> CorvantaSdkVideoThumbnailGeneratorImplementation::generateThumbnail(
    CorvantaSdkVideoThumbnailInputVideo video) {
    return generateThumbnail(std::move(video), nullptr);
}

Task<CorvantaSdkVideoThumbnailResult>
CorvantaSdkVideoThumbnailGeneratorImplementation::generateThumbnail(CorvantaSdkVideoThumbnailInputVideo video,
                                                                    std::shared_ptr<ProgressMeter> meter) {
    const URL input = video.input().url();
    Logger::addLog(Event::createThumbnail, EventMessage::createThumbnail(input));
    requireLogin(*credentialsManager_);
    if (!FileManager::fileExists(input.path())) {
        throw Error(Error::notFoundVideo, "there is no " + input.path());
    }
    if (video.width().value_or(0) < 0) {
        throw Error(Error::invalidThumbnailWidth, std::to_string(*video.width()) + " pixels");
    }
    if (video.height().value_or(0) < 0) {
        throw Error(Error::invalidThumbnailHeight, std::to_string(*video.height()) + " pixels");
    }
    co_await validatePosition(video.position(), input);
    const auto output = video.output().url(FileExtension(FileExtension::jpg).rawValue());
    if (!output) {
        throw Error(Error::notFoundVideo, "the output location is no URL");
    }
    const auto failed = [&input](const std::exception& error) {
        Logger::logError(Event::createThumbnail, EventMessage::createThumbnailFailed(input, error));
        if (isCancellation(error)) {
            throw;
        }
        return Error(Error::thumbnailGenerationFailed, detailsOf(error));
    };
    CommandPaths paths;
    URL written;
    std::string command;
    try {
        const CorvantaSdkVideoFile file(paths.input(input, PathForm::bareURL));
        written = paths.output(*output, PathForm::quotedImage);
        command = commandGenerator_.generateThumbnailGenerationCommandFor(video.of(file), written);
    } catch (const std::system_error& error) {
        // What can't succeed doesn't cost an older thumbnail.
        throw failed(error);
    }
    removeOlderThumbnail(output->path());
    try {
        co_await run(commandExecutor_, std::move(command), written.path(), meter);
        paths.finish();
        if (meter) {
            meter->complete();
        }
    } catch (const std::exception& error) {
        throw failed(error);
    }
    co_return CorvantaSdkVideoThumbnailResult{*output};
}

} // namespace corvanta
