#include <CorvantaSdkVideo/Commands/Concat/CorvantaSdkVideoConcatEngine.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>

#include <algorithm>
#include <system_error>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

// The list file protects nothing: the demuxer ends a bare path at a blank and takes quotes and backslashes
// away. The list file's own path stands bare in the command.
bool isBarePath(const std::string& path) {
    constexpr std::string_view special(" \t\r\n'\"\\\0", 8);
    return path.find_first_of(special) == std::string::npos;
}

bool canListBare(const std::vector<URL>& videos, const FFMPEGCommand& command) {
    return std::ranges::all_of(videos, isBarePath, &URL::path) &&
           std::ranges::all_of(command.inputFilesListFilePaths, isBarePath);
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
CorvantaSdkVideoConcatEngine::process(std::shared_ptr<CorvantaSdkVideoRequest> request) {
    const auto self = shared_from_this();
    validateAuthentication();
    validateRequestStatus(*request);
    if (!request->concatData) {
        markUnusable(request->id);
        throw Error(Error::concatFailed);
    }
    const std::vector<URL> videos = request->concatData->videos;
    const auto outputURL = request->output.url(videos.empty() ? "mp4" : videos.front().pathExtension());
    if (!outputURL) {
        throw Error(Error::concatFailed);
    }
    videosValidator_.validateVideosExistence(videos, 2);
    const auto information = co_await videosInformationGenerator_.generateAssetsMetadata(videos);
    co_await inputValidator_.validateVideosForConcat(videos);

    const URL listURL = CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "txt");
    const FFMPEGCommand command =
        commandGenerator_.generateConcatCommandFor(information, listURL, outputURL->path());
    markProcessing(request->id);
    try {
        if (!canListBare(videos, command)) {
            throw std::system_error(std::make_error_code(std::errc::invalid_argument), "list file");
        }
        co_await run(request->id, command.script, outputURL->path());
    } catch (const std::exception&) {
        markFailed(request->id);
        throw Error(Error::concatFailed);
    }
    for (const std::string& path : command.inputFilesListFilePaths) {
        commandGenerator_.deleteInputFilesListFile(path);
    }
    markComplete(request->id);
    co_return CorvantaSdkVideoRequestResult{*outputURL};
}

} // namespace corvanta
