#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>

#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>

#include <utility>

namespace corvanta {

VideosInformationGenerator::VideosInformationGenerator(
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor, CorvantaSdkVideoFileValidator videosValidator)
    : credentialsManager_(std::move(credentialsManager)), commandExecutor_(std::move(commandExecutor)),
      videosValidator_(videosValidator) {}

Task<std::vector<CorvantaSdkVideoInformation>>
VideosInformationGenerator::getVideosInformation(std::vector<URL> videos) const {
    requireLogin(*credentialsManager_);
    videosValidator_.validateVideosExistence(videos);
    co_return co_await generateAssetsMetadata(std::move(videos));
}

Task<std::vector<CorvantaSdkVideoInformation>>
VideosInformationGenerator::generateAssetsMetadata(std::vector<URL> videos) const {
    const auto prepared = commandExecutor_->prepareMediaInformation(videos);
    std::vector<CorvantaSdkVideoInformation> information;
    for (const URL& video : videos) {
        Logger::addLog(Event::getInfo, EventMessage::getInfo(video));
        try {
            information.push_back(co_await commandExecutor_->getMediaInformation(video));
        } catch (const std::exception& error) {
            Logger::addLog(Event::getInfo, EventMessage::getInfoFailed(video, error));
            throw;
        }
    }
    co_return information;
}

} // namespace corvanta
