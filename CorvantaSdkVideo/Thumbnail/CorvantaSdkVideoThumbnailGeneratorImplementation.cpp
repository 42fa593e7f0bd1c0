#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGeneratorImplementation.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Cancellation.hpp>
#include <platform/FileManager.hpp>

#include <system_error>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

bool isValidPosition(double position, const URL& video) {
    const double duration = AssetReader(video).duration();
    return position >= 0 && position < duration;
}

void removeOlderThumbnail(const std::string& path) {
    if (!FileManager::fileExists(path)) {
        return;
    }
    try {
        FileManager::removeItem(path);
    } catch (const std::system_error&) {
        throw Error(Error::unableToDeleteExistingThumbnail);
    }
}

Task<> run(std::shared_ptr<FFMPEGCommandExecutor> executor, std::string command, std::string outputPath) {
    co_await executor->executeFFMPEGCommand(std::move(command));
    // Past the last frame ffmpeg succeeds and writes nothing.
    if (!FileManager::fileExists(outputPath)) {
        throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory), outputPath);
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
    const URL input = video.input().url();
    Logger::addLog(Event::createThumbnail, EventMessage::createThumbnail(input));
    if (!credentialsManager_->isUserAuthenticated()) {
        throw Error(Error::userNotAuthenticated);
    }
    if (!FileManager::fileExists(input.path())) {
        throw Error(Error::notFoundVideo);
    }
    if (video.width().value_or(0) < 0) {
        throw Error(Error::invalidThumbnailWidth);
    }
    if (video.height().value_or(0) < 0) {
        throw Error(Error::invalidThumbnailHeight);
    }
    if (!isValidPosition(video.position(), input)) {
        throw Error(Error::invalidPositionInVideo);
    }
    const auto output = video.output().url(FileExtension(FileExtension::jpg).rawValue());
    if (!output) {
        throw Error(Error::notFoundVideo);
    }
    const auto failed = [&input](const std::exception& error) {
        Logger::logError(Event::createThumbnail, EventMessage::createThumbnailFailed(input, error));
        if (isCancellation(error)) {
            throw;
        }
        return Error(Error::thumbnailGenerationFailed);
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
        co_await run(commandExecutor_, std::move(command), written.path());
        paths.finish();
    } catch (const std::exception& error) {
        throw failed(error);
    }
    co_return CorvantaSdkVideoThumbnailResult{*output};
}

} // namespace corvanta
