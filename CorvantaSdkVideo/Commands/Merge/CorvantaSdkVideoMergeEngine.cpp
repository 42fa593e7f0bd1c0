#include <CorvantaSdkVideo/Commands/Merge/CorvantaSdkVideoMergeEngine.hpp>

#include <CorvantaSdkVideo/Commands/Encoding/EncodingForms.hpp>
#include <CorvantaSdkVideo/Commands/Join/JoinInspector.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/KeptTags.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>
#include <CorvantaSdkVideo/Shared/MeasuredLengths.hpp>

#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

// What is no number is not large enough.
void validateResolution(std::optional<double> component) {
    if (component && !(*component >= CorvantaSdkVideoMergeEngine::minimumSupportedResolutionDimension)) {
        throw CorvantaSdkVideoFileValidator::tooSmall(*component);
    }
}

} // namespace

CorvantaSdkVideoMergeEngine::CorvantaSdkVideoMergeEngine(
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
    FFMPEGMergeCommandGenerator commandGenerator, std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
    VideosInformationGenerator videosInformationGenerator, CorvantaSdkVideoFileValidator videosValidator,
    std::shared_ptr<VideoStore> store)
    : StoredRequestEngine(std::move(credentialsManager), std::move(commandExecutor), std::move(store)),
      commandGenerator_(commandGenerator), videosInformationGenerator_(std::move(videosInformationGenerator)),
      videosValidator_(videosValidator) {}

Task<CorvantaSdkVideoRequestResult>
CorvantaSdkVideoMergeEngine::carryOut(std::shared_ptr<CorvantaSdkVideoRequest> request) {
    if (!request->mergeData) {
        markUnusable(request->id);
        throw Error(Error::mergeFailed, "the request tells of no merge");
    }
    const VideoMergeData data = *request->mergeData;
    videosValidator_.validateVideosExistence(data.videos, 2);
    validateResolution(data.width);
    validateResolution(data.height);
    auto information = co_await videosInformationGenerator_.generateAssetsMetadata(data.videos);
    if (data.isJoin) {
        information = withoutOverhang(co_await withMeasuredLengths(std::move(information)));
    }
    const auto outputURL = request->output.url(FileExtension(FileExtension::mp4).rawValue());
    if (!outputURL) {
        throw Error(Error::unableToProcessOutput, "the output location is no URL");
    }
    std::string encoder;
    try {
        encoder = co_await merge(request->id, data, std::move(information), *outputURL);
    } catch (const std::exception& error) {
        Logger::logError(Event::mergeRequest, EventMessage::mergeRequestFailed(error));
        markFailed(request->id, error);
        throw Error(Error::mergeFailed, detailsOf(error));
    }
    markComplete(request->id);
    co_return CorvantaSdkVideoRequestResult{*outputURL, encoder};
}

Task<std::string> CorvantaSdkVideoMergeEngine::merge(UUID id, VideoMergeData data,
                                                     std::vector<CorvantaSdkVideoInformation> information,
                                                     URL outputURL) {
    CommandPaths paths;
    auto inputs = paths.inputs(std::move(information), PathForm::quotedURL);
    const double seconds = totalSeconds(inputs);
    const URL output = paths.output(outputURL, PathForm::quoted);
    MergeCommand command{.generator = commandGenerator_,
                         .inputs = std::move(inputs),
                         .width = data.width,
                         .height = data.height,
                         .videoTracks = data.videoTracks,
                         .audioTracks = data.audioTracks,
                         .framesRate = data.framesRate,
                         .outputPath = output.path()};
    if (data.isJoin || data.encoding) {
        command.tagOptions = keptTags(data.videos.front(), 0, output.path());
    }
    requireFreeSpace(outputURL.path(), leastEncodedBytes(seconds), Error::mergeFailed);
    std::vector<EncoderRun> runs = co_await encoderRuns(std::move(command), data.encoding);
    markProcessing(id);
    std::string encoder = co_await runFirstWorking(id, std::move(runs), seconds);
    paths.finish();
    co_return encoder;
}

} // namespace corvanta
