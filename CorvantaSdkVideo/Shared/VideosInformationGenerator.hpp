#pragma once

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>

#include <memory>
#include <vector>

namespace corvanta {

/// Probes lists of files, one after the other. Immutable; outlives the tasks that it gives.
class VideosInformationGenerator {
  public:
    explicit VideosInformationGenerator(std::shared_ptr<CorvantaCredentialsManager> credentialsManager =
                                            std::make_shared<CorvantaCredentialsManagerImp>(),
                                        std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
                                            std::make_shared<FFMPEGCommandExecutorImplementation>(),
                                        CorvantaSdkVideoFileValidator videosValidator = {});

    /// Throws `userNotAuthenticated`, what `validateVideosExistence` throws, or the first failed probe's
    /// error.
    Task<std::vector<CorvantaSdkVideoInformation>> getVideosInformation(std::vector<URL> videos) const;

    /// The same without the checks, for callers that have made their own.
    Task<std::vector<CorvantaSdkVideoInformation>> generateAssetsMetadata(std::vector<URL> videos) const;

  private:
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    CorvantaSdkVideoFileValidator videosValidator_;
};

} // namespace corvanta
