#include <CorvantaSdkVideo/Commands/Encoding/CorvantaSdkVideoVideoEncoderEngine.hpp>

#include <CorvantaSdkVideo/Commands/Encoding/EncodingForms.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/KeptTags.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>

#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

std::vector<CorvantaSdkVideoMergeVideoTrack>
mergeTracks(const std::vector<CorvantaSdkVideoEncodeVideoEntry>& videoTracks) {
    std::vector<CorvantaSdkVideoMergeVideoTrack> tracks;
    tracks.reserve(videoTracks.size());
    for (const CorvantaSdkVideoEncodeVideoEntry& entry : videoTracks) {
        tracks.push_back({{{0, entry.entryIndex}}, entry.width, entry.height});
    }
    return tracks;
}

std::vector<CorvantaSdkVideoMergeAudioTrack> mergeTracks(const std::vector<std::int64_t>& audioTracks) {
    std::vector<CorvantaSdkVideoMergeAudioTrack> tracks;
    tracks.reserve(audioTracks.size());
    for (const std::int64_t entryIndex : audioTracks) {
        tracks.push_back({{{0, entryIndex}}});
    }
    return tracks;
}

} // namespace

CorvantaSdkVideoVideoEncoderEngine::CorvantaSdkVideoVideoEncoderEngine(
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
    CorvantaSdkVideoFileValidator videoValidator, std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
    FFMPEGMergeCommandGenerator commandGenerator, std::shared_ptr<VideoStore> store)
    : StoredRequestEngine(std::move(credentialsManager), std::move(commandExecutor), std::move(store)),
      videoValidator_(videoValidator), commandGenerator_(commandGenerator) {}

Task<CorvantaSdkVideoRequestResult>
CorvantaSdkVideoVideoEncoderEngine::carryOut(std::shared_ptr<CorvantaSdkVideoRequest> request) {
    if (!request->encodingData) {
        markUnusable(request->id);
        throw Error(Error::encodingFailed, "the request tells of no encode");
    }
    const VideoEncodingData data = *request->encodingData;
    const auto outputURL = request->output.url(FileExtension(FileExtension::mp4).rawValue());
    if (!outputURL) {
        throw Error(Error::unableToProcessOutput, "the output location is no URL");
    }
    videoValidator_.validateFileAt(data.inputFileURL);
    videoValidator_.validateResolution(data.width);
    videoValidator_.validateResolution(data.height);
    std::string encoder;
    try {
        encoder = co_await encode(request->id, data, *outputURL);
    } catch (const std::exception& error) {
        Logger::logError(Event::processRequest, EventMessage::processRequestFailed(error));
        markFailed(request->id, error);
        throw Error(Error::encodingFailed, detailsOf(error));
    }
    markComplete(request->id);
    co_return CorvantaSdkVideoRequestResult{*outputURL, encoder};
}

Task<std::string> CorvantaSdkVideoVideoEncoderEngine::encode(UUID id, VideoEncodingData data, URL outputURL) {
    std::vector<CorvantaSdkVideoInformation> information;
    information.push_back(co_await commandExecutor().getMediaInformation(data.inputFileURL));
    CommandPaths paths;
    auto inputs = paths.inputs(std::move(information), PathForm::quotedURL);
    const double seconds = totalSeconds(inputs);
    const URL output = paths.output(outputURL, PathForm::quoted);
    MergeCommand command{.generator = commandGenerator_,
                         .inputs = std::move(inputs),
                         .width = data.width,
                         .height = data.height,
                         .videoTracks = mergeTracks(data.videoTracks),
                         .audioTracks = mergeTracks(data.audioTracks),
                         .framesRate = data.framesRate,
                         .outputPath = output.path()};
    if (data.encoding) {
        command.tagOptions = keptTags(data.inputFileURL, 0, output.path());
    }
    requireFreeSpace(outputURL.path(), leastEncodedBytes(seconds), Error::encodingFailed);
    std::vector<EncoderRun> runs = co_await encoderRuns(std::move(command), data.encoding);
    markProcessing(id);
    CorvantaSdkVideoUtils::deleteFileIfExists(outputURL);
    std::string encoder = co_await runFirstWorking(id, std::move(runs), seconds);
    paths.finish();
    co_return encoder;
}

} // namespace corvanta
