#pragma once

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandGenerator.hpp>
#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGenerator.hpp>

#include <memory>

namespace corvanta {

/// Keeps no state between calls. Two calls with one output race for the file.
class CorvantaSdkVideoThumbnailGeneratorImplementation : public CorvantaSdkVideoThumbnailGenerator {
  public:
    explicit CorvantaSdkVideoThumbnailGeneratorImplementation(
        FFMPEGCommandGenerator commandGenerator = {},
        std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
            std::make_shared<FFMPEGCommandExecutorImplementation>(),
        std::shared_ptr<CorvantaCredentialsManager> credentialsManager =
            std::make_shared<CorvantaCredentialsManagerImp>());

    Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoThumbnailInputVideo video) override;

    /// The same, telling the meter, if there is one.
    Task<CorvantaSdkVideoThumbnailResult> generateThumbnail(CorvantaSdkVideoThumbnailInputVideo video,
                                                            std::shared_ptr<ProgressMeter> meter);

  private:
    FFMPEGCommandGenerator commandGenerator_;
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
};

} // namespace corvanta
