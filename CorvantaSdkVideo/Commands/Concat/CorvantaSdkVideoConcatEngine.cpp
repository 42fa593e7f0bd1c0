#include <CorvantaSdkVideo/Commands/Concat/CorvantaSdkVideoConcatEngine.hpp>

#include <CorvantaSdkVideo/Commands/Join/JoinCommands.hpp>
#include <CorvantaSdkVideo/Commands/Join/JoinInspector.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/KeptTags.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>
#include <platform/OutputContainer.hpp>

#include <system_error>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

struct RemovedAtEnd {
    const URL& file;
    ~RemovedAtEnd() { CorvantaSdkVideoUtils::deleteFileIfExists(file); }
};

// They may have changed since the request was built.
void requireAlike(const std::vector<JoinFile>& files) {
    if (const std::string obstacle = copyObstacle(files); !obstacle.empty()) {
        throw Error(Error::InvalidInputFilesReason::differentVideoTracks, obstacle);
    }
}

} // namespace

CorvantaSdkVideoConcatEngine::CorvantaSdkVideoConcatEngine(
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager, FFMPEGCommandGenerator commandGenerator,
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor, ConcatInputValidator inputValidator,
    VideosInformationGenerator videosInformationGenerator, CorvantaSdkVideoFileValidator videosValidator,
    std::shared_ptr<VideoStore> store)
    : StoredRequestEngine(std::move(credentialsManager), std::move(commandExecutor), std::move(store)),
      commandGenerator_(commandGenerator), inputValidator_(std::move(inputValidator)),
      videosInformationGenerator_(std::move(videosInformationGenerator)), videosValidator_(videosValidator) {}

Task<CorvantaSdkVideoRequestResult>
CorvantaSdkVideoConcatEngine::carryOut(std::shared_ptr<CorvantaSdkVideoRequest> request) {
    if (!request->concatData) {
        markUnusable(request->id);
        throw Error(Error::concatFailed, "the request tells of no videos");
    }
    const std::vector<URL> videos = request->concatData->videos;
    const auto joinExtension = request->concatData->joinExtension;
    const auto outputURL = request->output.url(
        joinExtension ? *joinExtension : (videos.empty() ? "mp4" : videos.front().pathExtension()));
    if (!outputURL) {
        throw Error(Error::concatFailed, "the output location is no URL");
    }
    videosValidator_.validateVideosExistence(videos, 2);
    auto information = co_await videosInformationGenerator_.generateAssetsMetadata(videos);
    std::vector<JoinFile> files;
    if (joinExtension) {
        files = co_await joinFiles(information);
        requireAlike(files);
    } else {
        co_await inputValidator_.validateVideosForConcat(videos);
    }
    try {
        if (joinExtension) {
            co_await joinAlike(request->id, std::move(files), *outputURL);
        } else {
            co_await join(request->id, std::move(information), *outputURL);
        }
    } catch (const std::exception& error) {
        markFailed(request->id, error);
        throw Error(Error::concatFailed, detailsOf(error));
    }
    markComplete(request->id);
    co_return CorvantaSdkVideoRequestResult{*outputURL};
}

Task<> CorvantaSdkVideoConcatEngine::join(UUID id, std::vector<CorvantaSdkVideoInformation> information,
                                          URL outputURL) {
    // The output's extension is the first input's, whatever that is called.
    if (!isSingleFileOutput(outputURL.path())) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument), outputURL.path());
    }
    requireSpaceForCopies(outputURL.path(), information, Error::concatFailed);
    CommandPaths paths;
    const auto inputs = paths.inputs(std::move(information), PathForm::listed);
    const URL output = paths.output(outputURL, PathForm::quoted);
    const URL list =
        paths.temporary(CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "txt"), PathForm::listFile);
    const FFMPEGCommand command = commandGenerator_.generateConcatCommandFor(inputs, list, output.path());
    markProcessing(id);
    co_await run(id, command.script, totalSeconds(inputs));
    paths.finish();
    for (const std::string& path : command.inputFilesListFilePaths) {
        commandGenerator_.deleteInputFilesListFile(path);
    }
}

Task<> CorvantaSdkVideoConcatEngine::joinAlike(UUID id, std::vector<JoinFile> files, URL outputURL) {
    std::vector<CorvantaSdkVideoInformation> information;
    for (const JoinFile& file : files) {
        information.push_back(file.information);
    }
    requireSpaceForCopies(outputURL.path(), information, Error::concatFailed);
    CommandPaths paths;
    const JoinFile& first = files.front();
    const URL tagged = paths.input(first.information.url, PathForm::quoted);
    std::vector<std::string> listed;
    double seconds = 0;
    for (const JoinFile& file : files) {
        listed.push_back(paths.input(file.information.url, PathForm::listed).path());
        seconds += static_cast<double>(file.information.durationMillis) / 1000;
    }
    const URL output = paths.output(outputURL, PathForm::quoted);
    const URL list =
        paths.temporary(CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "txt"), PathForm::listFile);
    const std::string tags = keptTags(first.information.url, 1, output.path());
    const FFMPEGCommand command = joinByCopyCommand(first, listed, tagged, list, tags, output.path());
    // Also when the run fails.
    const RemovedAtEnd removed{list};
    markProcessing(id);
    co_await run(id, command.script, seconds);
    paths.finish();
}

} // namespace corvanta
