#include <CorvantaSdkVideo/TracksManager/TracksManager.hpp>

#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <platform/FileManager.hpp>
#include <platform/UUID.hpp>

#include <utility>

namespace corvanta {

namespace {

URL temporaryURL() { return CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "mp4"); }

void removeTemporary(const URL& url) {
    const std::string path = url.path();
    if (FileManager::fileExists(path)) {
        FileManager::removeItem(path);
    }
}

} // namespace

TracksManager::TracksManager(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                             FFMPEGVideoTracksCommandGenerator commandGenerator)
    : commandExecutor_(std::move(commandExecutor)), commandGenerator_(commandGenerator) {}

Task<> TracksManager::addVideoTrack(URL inputPath, URL outputPath, std::int64_t duration, std::int64_t width,
                                    std::int64_t height) const {
    const auto executor = commandExecutor_;
    CommandPaths paths;
    const URL input = paths.input(inputPath, PathForm::quoted);
    const URL output = paths.output(outputPath, PathForm::quoted);
    const URL track = paths.temporary(temporaryURL(), PathForm::quoted);
    std::string create = commandGenerator_.createVideoTrackCommand(track, duration, width, height);
    std::string add =
        commandGenerator_.generateAddVideoTrackCommand(input.path(), track.path(), output.path());
    co_await executor->executeFFMPEGCommand(std::move(create));
    co_await executor->executeFFMPEGCommand(std::move(add));
    paths.finish();
    removeTemporary(track);
}

Task<> TracksManager::addAudioTrack(URL inputPath, URL outputPath, std::int64_t duration) const {
    const auto executor = commandExecutor_;
    CommandPaths paths;
    const URL input = paths.input(inputPath, PathForm::quoted);
    const URL output = paths.output(outputPath, PathForm::quoted);
    const URL track = paths.temporary(temporaryURL(), PathForm::quoted);
    std::string create = commandGenerator_.createAudioTrackCommand(track, duration);
    std::string add =
        commandGenerator_.generateAddAudioTrackCommand(input.path(), track.path(), output.path());
    co_await executor->executeFFMPEGCommand(std::move(create));
    co_await executor->executeFFMPEGCommand(std::move(add));
    paths.finish();
    removeTemporary(track);
}

Task<> TracksManager::removeVideoTrack(URL inputPath, URL outputPath) const {
    const auto executor = commandExecutor_;
    CommandPaths paths;
    const URL input = paths.input(inputPath, PathForm::quoted);
    const URL output = paths.output(outputPath, PathForm::quoted);
    std::string command = commandGenerator_.generateRemoveVideoTrackCommand(input, output);
    co_await executor->executeFFMPEGCommand(std::move(command));
    paths.finish();
}

Task<> TracksManager::removeAudioTrack(URL inputPath, URL outputPath) const {
    const auto executor = commandExecutor_;
    CommandPaths paths;
    const URL input = paths.input(inputPath, PathForm::bareURL);
    const URL output = paths.output(outputPath, PathForm::bareURL);
    std::string command = commandGenerator_.generateRemoveAudioTrackCommand(input, output);
    co_await executor->executeFFMPEGCommand(std::move(command));
    paths.finish();
}

} // namespace corvanta
