#include <CorvantaSdkVideo/Commands/Concat/CorvantaSdkVideoConcatEngine.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <platform/OutputContainer.hpp>

#include <system_error>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

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
    const auto outputURL = request->output.url(videos.empty() ? "mp4" : videos.front().pathExtension());
    if (!outputURL) {
        throw Error(Error::concatFailed, "the output location is no URL");
    }
    videosValidator_.validateVideosExistence(videos, 2);
    auto information = co_await videosInformationGenerator_.generateAssetsMetadata(videos);
    co_await inputValidator_.validateVideosForConcat(videos);
    try {
        co_await join(request->id, std::move(information), *outputURL);
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

} // namespace corvanta
