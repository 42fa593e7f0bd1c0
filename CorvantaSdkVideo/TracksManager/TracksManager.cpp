#include <CorvantaSdkVideo/TracksManager/TracksManager.hpp>

#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <platform/Errors.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/FileManager.hpp>
#include <platform/UUID.hpp>

#include <string_view>
#include <utility>

namespace corvanta {

namespace {

URL temporaryURL() { return CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "mp4"); }

// Of a bare word the runner decodes "file" URLs; every other text must be the path itself.
bool isWritableBare(const URL& url) {
    const std::string path = url.path();
    const bool reachesPath = url.isFileURL() || url.absoluteString() == path;
    return reachesPath && isFileName(path) && path.find('\0') == std::string::npos;
}

// ffmpeg knows an output that is its input by the name alone; under another name it would empty the file
// before it has read it.
void require(bool areWritable, const URL& inputPath, const URL& outputPath) {
    if (!areWritable || FileManager::isSameFile(inputPath.path(), outputPath.path())) {
        throw PlatformError(FFmpegKitConfig::sessionStateToString(SessionState::failed).value_or(""),
                            ReturnCode::notStarted);
    }
}

void removeTemporary(const URL& url) {
    const std::string path = url.path();
    if (FileManager::fileExists(path)) {
        FileManager::removeItem(path);
    }
}

// Makes the blank track, then the output from it.
Task<> addTrack(std::shared_ptr<FFMPEGCommandExecutor> executor, URL temporary, std::string createCommand,
                std::string addCommand) {
    co_await executor->executeFFMPEGCommand(std::move(createCommand));
    co_await executor->executeFFMPEGCommand(std::move(addCommand));
    removeTemporary(temporary);
}

} // namespace

TracksManager::TracksManager(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                             FFMPEGVideoTracksCommandGenerator commandGenerator)
    : commandExecutor_(std::move(commandExecutor)), commandGenerator_(commandGenerator) {}

Task<> TracksManager::addVideoTrack(URL inputPath, URL outputPath, std::int64_t duration, std::int64_t width,
                                    std::int64_t height) const {
    const URL temporary = temporaryURL();
    require(isWritableQuoted(inputPath.path()) && isWritableQuoted(temporary.path()) &&
                isWritableQuoted(outputPath.path()),
            inputPath, outputPath);
    std::string create = commandGenerator_.createVideoTrackCommand(temporary, duration, width, height);
    std::string add =
        commandGenerator_.generateAddVideoTrackCommand(inputPath.path(), temporary.path(), outputPath.path());
    co_await addTrack(commandExecutor_, temporary, std::move(create), std::move(add));
}

Task<> TracksManager::addAudioTrack(URL inputPath, URL outputPath, std::int64_t duration) const {
    const URL temporary = temporaryURL();
    require(isWritableQuoted(inputPath.path()) && isWritableQuoted(temporary.path()) &&
                isWritableQuoted(outputPath.path()),
            inputPath, outputPath);
    std::string create = commandGenerator_.createAudioTrackCommand(temporary, duration);
    std::string add =
        commandGenerator_.generateAddAudioTrackCommand(inputPath.path(), temporary.path(), outputPath.path());
    co_await addTrack(commandExecutor_, temporary, std::move(create), std::move(add));
}

Task<> TracksManager::removeVideoTrack(URL inputPath, URL outputPath) const {
    const auto executor = commandExecutor_;
    require(isWritableQuoted(inputPath.path()) && isWritableQuoted(outputPath.path()), inputPath, outputPath);
    std::string command = commandGenerator_.generateRemoveVideoTrackCommand(inputPath, outputPath);
    co_await executor->executeFFMPEGCommand(std::move(command));
}

Task<> TracksManager::removeAudioTrack(URL inputPath, URL outputPath) const {
    const auto executor = commandExecutor_;
    require(isWritableBare(inputPath) && isWritableBare(outputPath), inputPath, outputPath);
    std::string command = commandGenerator_.generateRemoveAudioTrackCommand(inputPath, outputPath);
    co_await executor->executeFFMPEGCommand(std::move(command));
}

} // namespace corvanta
