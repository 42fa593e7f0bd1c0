#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>

#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Cancellation.hpp>
#include <platform/UUID.hpp>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

double durationOf(const URL& url) {
    try {
        return AssetReader(url).duration();
    } catch (const std::exception&) {
        throw Error(Error::invalidFile);
    }
}

// The command's template is filled in from left to right, so that these would be replaced in the source's
// path as well.
bool holdsPlaceholder(std::string_view path) {
    constexpr auto placeholders = std::to_array<std::string_view>(
        {"{trimStart}", "{trimEnd}", "{rotationMetadata}", "{volumeCommand}", "{outputFile}"});
    return std::ranges::any_of(placeholders, [path](std::string_view placeholder) {
        return path.find(placeholder) != std::string_view::npos;
    });
}

// ffmpeg itself notices this only if both are spelled alike; otherwise it empties the source.
bool isSameFile(const std::string& input, const std::string& output) {
    std::error_code absent;
    return std::filesystem::equivalent(input, output, absent);
}

void requireWritable(const std::string& input, const std::string& output) {
    if (!isWritableQuoted(input) || holdsPlaceholder(input)) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument), input);
    }
    if (!isWritableQuoted(output) || isSameFile(input, output)) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument), output);
    }
}

} // namespace

CorvantaSdkVideoEditorImplementation::CorvantaSdkVideoEditorImplementation(
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor, FFMPEGCommandGenerator commandGenerator,
    CorvantaSdkVideoFileValidator videoValidator)
    : credentialsManager_(std::move(credentialsManager)), commandExecutor_(std::move(commandExecutor)),
      commandGenerator_(commandGenerator), videoValidator_(videoValidator) {}

Task<CorvantaSdkVideoEditorResult>
CorvantaSdkVideoEditorImplementation::edit(CorvantaSdkVideoEditorInput video) {
    Logger::addLog(Event::editVideo, EventMessage::editVideo(video.videoURL));
    if (!credentialsManager_->isUserAuthenticated()) {
        throw Error(Error::userNotAuthenticated);
    }
    videoValidator_.validateFileAt(video.videoURL);
    validateTrimRange(video.videoURL, video.startPosition, video.endPosition);
    FFMPEGCommand command =
        commandGenerator_.generateEditCommand(video.videoURL, video.startPosition, video.endPosition,
                                              video.rotationAngle, video.volumen, video.outputURL);
    try {
        requireWritable(video.videoURL.path(), video.outputURL.path());
        co_await commandExecutor_->executeFFMPEGCommand(std::move(command.script));
    } catch (const std::exception& error) {
        Logger::logError(Event::editVideo, EventMessage::editVideoFailed(error));
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::trimFailed);
    }
    CorvantaSdkVideoEditorResult result{video.outputURL};
    co_return result;
}

Task<URL> CorvantaSdkVideoEditorImplementation::getThumbnailForVideo(URL at, double interval,
                                                                     std::optional<std::int64_t> width,
                                                                     std::optional<std::int64_t> height) {
    if (!credentialsManager_->isUserAuthenticated()) {
        throw Error(Error::userNotAuthenticated);
    }
    videoValidator_.validateFileAt(at);
    validateThumbnailPosition(at, interval);
    const URL output = CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()),
                                                        FileExtension(FileExtension::jpg).rawValue());
    const std::string outputPath = output.path();
    if (!isWritableQuoted(at.path()) || !isWritableQuoted(outputPath) || !isPlainImageName(outputPath)) {
        throw Error(Error::trimFailed);
    }
    FFMPEGCommand command =
        commandGenerator_.generateThumbnailForTrim(at, interval, width, height, outputPath);
    try {
        co_await commandExecutor_->executeFFMPEGCommand(std::move(command.script));
    } catch (const std::exception& error) {
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::trimFailed);
    }
    co_return output;
}

void CorvantaSdkVideoEditorImplementation::validateTrimRange(const URL& url, double trimStart,
                                                             double trimEnd) const {
    const double duration = durationOf(url);
    if (!(trimStart >= 0 && trimEnd > trimStart && duration >= trimEnd)) {
        throw Error(Error::invalidTrimRange);
    }
}

void CorvantaSdkVideoEditorImplementation::validateThumbnailPosition(const URL& url, double interval) const {
    const double duration = durationOf(url);
    if (!(duration >= interval)) {
        throw Error(Error::invalidTrimRange);
    }
}

} // namespace corvanta
