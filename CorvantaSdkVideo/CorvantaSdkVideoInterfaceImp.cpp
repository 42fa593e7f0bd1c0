#include <CorvantaSdkVideo/CorvantaSdkVideoInterfaceImp.hpp>

#include <CorvantaSdkVideo/Commands/Helpers/RequestProgress.hpp>
#include <CorvantaSdkVideo/Commands/Join/JoinInspector.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseCancellationEngine.hpp>
#include <CorvantaSdkVideo/Shared/FileURLs.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>
#include <CorvantaSdkVideo/Thumbnail/ContactSheet.hpp>
#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGeneratorImplementation.hpp>

#include <platform/Directories.hpp>
#include <platform/NeverDestroyed.hpp>

#include <string>
#include <utility>

namespace corvanta {

CorvantaSdkVideoInterfaceImp::CorvantaSdkVideoInterfaceImp() {
    Logger::addLog(Event::initVideo, EventMessage::initVideoModule());
    coreDataStore()->resetPendingRequests();
}

Task<std::vector<CorvantaSdkVideoInformation>>
CorvantaSdkVideoInterfaceImp::getVideosInformation(std::vector<CorvantaSdkVideoFile> input) {
    return videosInformationGenerator().getVideosInformation(urls(input));
}

std::shared_ptr<CorvantaSdkVideoNoiseCancellationEngine> CorvantaSdkVideoInterfaceImp::engine() {
    return std::make_shared<CorvantaNoiseCancellationEngine>();
}

Task<CorvantaSdkVideoThumbnailResult> CorvantaSdkVideoInterfaceImp::generateThumbnail(
    CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, double position,
    std::optional<std::int64_t> width, std::optional<std::int64_t> height) {
    const auto generator = thumbnailGenerator();
    CorvantaSdkVideoThumbnailInputVideo video(std::move(input), std::move(output), position, width, height);
    co_return co_await generator->generateThumbnail(std::move(video));
}

Task<CorvantaSdkVideoThumbnailResult> CorvantaSdkVideoInterfaceImp::generateThumbnail(
    CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, double position,
    std::optional<std::int64_t> width, std::optional<std::int64_t> height,
    CorvantaSdkVideoProgressCallback onProgress) {
    CorvantaSdkVideoThumbnailGeneratorImplementation generator;
    CorvantaSdkVideoThumbnailInputVideo video(std::move(input), std::move(output), position, width, height);
    auto meter = std::make_shared<ProgressMeter>(std::move(onProgress));
    co_return co_await generator.generateThumbnail(std::move(video), std::move(meter));
}

Task<CorvantaSdkVideoThumbnailResult>
CorvantaSdkVideoInterfaceImp::contactSheet(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output,
                                           std::int64_t columns, std::int64_t rows, std::int64_t width,
                                           CorvantaSdkVideoProgressCallback onProgress) {
    ContactSheet sheet;
    const ContactSheetForm form{columns, rows, width};
    auto meter = onProgress ? std::make_shared<ProgressMeter>(std::move(onProgress)) : nullptr;
    co_return co_await sheet.write(std::move(input), std::move(output), form, std::move(meter));
}

Task<CorvantaSdkVideoCutInspection> CorvantaSdkVideoInterfaceImp::cutInspection(CorvantaSdkVideoFile file,
                                                                                double start, double end) {
    CorvantaSdkVideoEditorImplementation editor;
    const CorvantaSdkVideoTimeRange range{start, end};
    co_return co_await editor.inspectCut(file.url(), range);
}

Task<bool> CorvantaSdkVideoInterfaceImp::canConcat(std::vector<CorvantaSdkVideoFile> input) {
    std::vector<URL> videos = urls(input);
    Logger::addLog(Event::compareVideo, EventMessage::compare(videos));
    co_return co_await concatInputValidator().canProcessConcatWith(std::move(videos));
}

Task<std::optional<CorvantaSdkVideoError>>
CorvantaSdkVideoInterfaceImp::obstacleToConcat(std::vector<CorvantaSdkVideoFile> input) {
    std::vector<URL> videos = urls(input);
    Logger::addLog(Event::compareVideo, EventMessage::compare(videos));
    co_return co_await concatInputValidator().obstacleToConcat(std::move(videos));
}

Task<CorvantaSdkVideoJoinInspection>
CorvantaSdkVideoInterfaceImp::joinInspection(std::vector<CorvantaSdkVideoFile> input,
                                             CorvantaSdkVideoJoinOptions options) {
    return joinInspector()->inspect(urls(input), std::move(options));
}

::corvanta::JoinBuilder CorvantaSdkVideoInterfaceImp::JoinBuilder(std::vector<CorvantaSdkVideoFile> input,
                                                                  CorvantaSdkVideoFileDescriptor output) {
    Logger::addLog(Event::createConcatBuilder, EventMessage::createConcatBuilder());
    return {std::move(input), std::move(output), joinInspector(),
            concatEngine(),   mergeEngine(),     coreDataStore()};
}

::corvanta::MergeBuilder CorvantaSdkVideoInterfaceImp::MergeBuilder(std::vector<CorvantaSdkVideoFile> input,
                                                                    CorvantaSdkVideoFileDescriptor output) {
    Logger::addLog(Event::createMergeBuilder, EventMessage::createMergeBuilder());
    return {std::move(input), std::move(output), mergeEngine(), coreDataStore()};
}

::corvanta::ConcatBuilder CorvantaSdkVideoInterfaceImp::ConcatBuilder(std::vector<CorvantaSdkVideoFile> input,
                                                                      CorvantaSdkVideoFileDescriptor output) {
    Logger::addLog(Event::createConcatBuilder, EventMessage::createConcatBuilder());
    return {std::move(input), std::move(output), concatEngine(), coreDataStore()};
}

::corvanta::EncodingBuilder
CorvantaSdkVideoInterfaceImp::EncodingBuilder(CorvantaSdkVideoFile input,
                                              CorvantaSdkVideoFileDescriptor output) {
    Logger::addLog(Event::createEncodeBuilder, EventMessage::createEncodeBuilder());
    return {std::move(input), std::move(output), encoderEngine(), coreDataStore()};
}

std::vector<std::shared_ptr<CorvantaSdkVideoRequest>>
CorvantaSdkVideoInterfaceImp::getRequests(CorvantaSdkVideoRequest::Status withStatus) {
    Logger::addLog(Event::getAllRequest, EventMessage::getRequestsBy(name(withStatus)));
    return requestBuilder().getRequestsByStatus(withStatus);
}

void CorvantaSdkVideoInterfaceImp::deleteRequest(UUID id) {
    Logger::addLog(Event::deleteRequest, EventMessage::deleteRequest(id));
    requestBuilder().deleteRequest(id);
}

Stream<std::vector<std::shared_ptr<CorvantaSdkVideoRequest>>>
CorvantaSdkVideoInterfaceImp::streamRequests(std::optional<CorvantaSdkVideoRequest::Status> withStatus) {
    const auto status = withStatus ? std::optional(name(*withStatus)) : std::nullopt;
    Logger::addLog(Event::streamRequestWithStatus, EventMessage::streamRequestsBy(status));
    return requestBuilder().streamRequests(withStatus);
}

Stream<std::shared_ptr<CorvantaSdkVideoRequest>> CorvantaSdkVideoInterfaceImp::streamRequest(UUID withId) {
    Logger::addLog(Event::streamRequestWithID, EventMessage::streamRequest(withId));
    return requestBuilder().streamVideoRequest(withId);
}

Stream<CorvantaSdkVideoProgress> CorvantaSdkVideoInterfaceImp::streamProgress(UUID withId) {
    Logger::addLog(Event::streamRequestWithID, EventMessage::streamRequest(withId));
    return RequestProgress::shared().stream(withId, *coreDataStore());
}

VideosInformationGenerator& CorvantaSdkVideoInterfaceImp::videosInformationGenerator() {
    static NeverDestroyed<VideosInformationGenerator> generator;
    return *generator;
}

URL CorvantaSdkVideoInterfaceImp::storeURL() {
    return Directories::store().appendingPathComponent("video-store.sqlite");
}

std::shared_ptr<VideoStore> CorvantaSdkVideoInterfaceImp::coreDataStore() {
    static NeverDestroyed<std::shared_ptr<VideoStore>> store([] {
        try {
            return std::make_shared<CoreDataCorvantaStore>(storeURL(), CoreDataCorvantaStore::Others::heard);
        } catch (const std::exception& error) {
            fatalError((storeURL().path() + " can't be opened: " + error.what()).c_str());
        }
    }());
    return *store;
}

ConcatInputValidator& CorvantaSdkVideoInterfaceImp::concatInputValidator() {
    static NeverDestroyed<ConcatInputValidator> validator;
    return *validator;
}

std::shared_ptr<const JoinInspector> CorvantaSdkVideoInterfaceImp::joinInspector() {
    static NeverDestroyed<std::shared_ptr<const JoinInspector>> inspector(
        std::make_shared<const JoinInspector>(videosInformationGenerator()));
    return *inspector;
}

std::shared_ptr<CorvantaSdkVideoConcatEngine> CorvantaSdkVideoInterfaceImp::concatEngine() {
    static NeverDestroyed<std::shared_ptr<CorvantaSdkVideoConcatEngine>> engine(
        std::make_shared<CorvantaSdkVideoConcatEngine>(
            std::make_shared<CorvantaCredentialsManagerImp>(), FFMPEGCommandGenerator(),
            std::make_shared<FFMPEGCommandExecutorImplementation>(), concatInputValidator(),
            videosInformationGenerator(), CorvantaSdkVideoFileValidator(), coreDataStore()));
    return *engine;
}

std::shared_ptr<CorvantaSdkVideoMergeEngine> CorvantaSdkVideoInterfaceImp::mergeEngine() {
    static NeverDestroyed<std::shared_ptr<CorvantaSdkVideoMergeEngine>> engine(
        std::make_shared<CorvantaSdkVideoMergeEngine>(
            std::make_shared<CorvantaCredentialsManagerImp>(), FFMPEGMergeCommandGenerator(),
            std::make_shared<FFMPEGCommandExecutorImplementation>(), videosInformationGenerator(),
            CorvantaSdkVideoFileValidator(), coreDataStore()));
    return *engine;
}

std::shared_ptr<CorvantaSdkVideoVideoEncoderEngine> CorvantaSdkVideoInterfaceImp::encoderEngine() {
    static NeverDestroyed<std::shared_ptr<CorvantaSdkVideoVideoEncoderEngine>> engine(
        std::make_shared<CorvantaSdkVideoVideoEncoderEngine>(
            std::make_shared<CorvantaCredentialsManagerImp>(), CorvantaSdkVideoFileValidator(),
            std::make_shared<FFMPEGCommandExecutorImplementation>(), FFMPEGMergeCommandGenerator(),
            coreDataStore()));
    return *engine;
}

CorvantaSdkVideoRequestBuilder& CorvantaSdkVideoInterfaceImp::requestBuilder() {
    static NeverDestroyed<CorvantaSdkVideoRequestBuilder> directory(coreDataStore(), mergeEngine(),
                                                                    concatEngine(), encoderEngine());
    return *directory;
}

std::unique_ptr<CorvantaSdkVideoThumbnailGenerator> CorvantaSdkVideoInterfaceImp::thumbnailGenerator() {
    return std::make_unique<CorvantaSdkVideoThumbnailGeneratorImplementation>();
}

} // namespace corvanta
