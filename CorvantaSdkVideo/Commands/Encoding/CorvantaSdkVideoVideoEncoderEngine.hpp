#pragma once

#include <CorvantaSdkVideo/Commands/Helpers/StoredRequestEngine.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>

#include <memory>
#include <string>

namespace corvanta {

/// Re-encodes one video through the filter graph of a merge with a single input.
class CorvantaSdkVideoVideoEncoderEngine : public StoredRequestEngine {
  public:
    CorvantaSdkVideoVideoEncoderEngine(std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
                                       CorvantaSdkVideoFileValidator videoValidator,
                                       std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                                       FFMPEGMergeCommandGenerator commandGenerator,
                                       std::shared_ptr<VideoStore> store);

  private:
    /// Failures before the probe leave the row as it was; a failed probe or run is logged and throws
    /// `encodingFailed`. An existing output is removed before the run.
    Task<CorvantaSdkVideoRequestResult> carryOut(std::shared_ptr<CorvantaSdkVideoRequest> request) override;

    /// Gives the encoder's name.
    Task<std::string> encode(UUID id, VideoEncodingData data, URL outputURL);

    CorvantaSdkVideoFileValidator videoValidator_;
    FFMPEGMergeCommandGenerator commandGenerator_;
};

} // namespace corvanta
