#pragma once

#include <CorvantaSdkVideo/Commands/Helpers/StoredRequestEngine.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>

#include <memory>
#include <optional>

namespace corvanta {

/// Joins videos of any format by re-encoding them through one filter graph.
class CorvantaSdkVideoMergeEngine : public StoredRequestEngine {
  public:
    /// Pixels.
    static constexpr double minimumSupportedResolutionDimension = 128.0;

    CorvantaSdkVideoMergeEngine(std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
                                FFMPEGMergeCommandGenerator commandGenerator,
                                std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                                VideosInformationGenerator videosInformationGenerator,
                                CorvantaSdkVideoFileValidator videosValidator,
                                std::shared_ptr<VideoStore> store);

  private:
    /// Failures before the run leave the row as it was; a failed run is logged and throws `mergeFailed`.
    Task<CorvantaSdkVideoRequestResult> carryOut(std::shared_ptr<CorvantaSdkVideoRequest> request) override;

    /// Gives the encoder's name.
    Task<std::string> merge(UUID id, VideoMergeData data,
                            std::vector<CorvantaSdkVideoInformation> information, URL outputURL);

    FFMPEGMergeCommandGenerator commandGenerator_;
    VideosInformationGenerator videosInformationGenerator_;
    CorvantaSdkVideoFileValidator videosValidator_;
};

} // namespace corvanta
