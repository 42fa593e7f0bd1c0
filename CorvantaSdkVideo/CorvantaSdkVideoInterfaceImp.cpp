#include <CorvantaSdkVideo/CorvantaSdkVideoInterfaceImp.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGeneratorImplementation.hpp>

#include <utility>

namespace corvanta {

namespace {

std::vector<URL> urls(const std::vector<CorvantaSdkVideoFile>& files) {
    std::vector<URL> result;
    result.reserve(files.size());
    for (const CorvantaSdkVideoFile& file : files) {
        result.push_back(file.url());
    }
    return result;
}

} // namespace

CorvantaSdkVideoInterfaceImp::CorvantaSdkVideoInterfaceImp() {
    Logger::addLog(Event::initVideo, EventMessage::initVideoModule());
}

Task<std::vector<CorvantaSdkVideoInformation>>
CorvantaSdkVideoInterfaceImp::getVideosInformation(std::vector<CorvantaSdkVideoFile> input) {
    return videosInformationGenerator().getVideosInformation(urls(input));
}

Task<CorvantaSdkVideoThumbnailResult> CorvantaSdkVideoInterfaceImp::generateThumbnail(
    CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, double position,
    std::optional<std::int64_t> width, std::optional<std::int64_t> height) {
    const auto generator = thumbnailGenerator();
    CorvantaSdkVideoThumbnailInputVideo video(std::move(input), std::move(output), position, width, height);
    co_return co_await generator->generateThumbnail(std::move(video));
}

VideosInformationGenerator& CorvantaSdkVideoInterfaceImp::videosInformationGenerator() {
    static VideosInformationGenerator generator;
    return generator;
}

std::unique_ptr<CorvantaSdkVideoThumbnailGenerator> CorvantaSdkVideoInterfaceImp::thumbnailGenerator() {
    return std::make_unique<CorvantaSdkVideoThumbnailGeneratorImplementation>();
}

} // namespace corvanta
