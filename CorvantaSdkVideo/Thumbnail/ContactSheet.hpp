#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoThumbnailInputVideo.hpp>
#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <platform/Task.hpp>

#include <cstdint>
#include <memory>

namespace corvanta {

/// How frames lie on a contact sheet.
struct ContactSheetForm {
    std::int64_t columns;
    std::int64_t rows;
    /// Of one frame, in pixels.
    std::int64_t width;
};

/// Writes one picture of evenly spread frames. Each is sought by itself, so that a long file takes no longer
/// than a short one. Keeps no state between calls, and must outlive its tasks.
class ContactSheet {
  public:
    /// What a JPEG file holds.
    static constexpr std::int64_t mostPixels = 65500;
    static constexpr std::int64_t mostFrames = 400;

    explicit ContactSheet(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
                              std::make_shared<FFMPEGCommandExecutorImplementation>(),
                          std::shared_ptr<CorvantaCredentialsManager> credentialsManager =
                              std::make_shared<CorvantaCredentialsManagerImp>());

    /// Writes a JPEG file, replacing an older one. Errors are those of `contactSheet` of the interface.
    /// `meter` may be absent.
    Task<CorvantaSdkVideoThumbnailResult> write(CorvantaSdkVideoFile input,
                                                CorvantaSdkVideoFileDescriptor output, ContactSheetForm form,
                                                std::shared_ptr<ProgressMeter> meter);

  private:
    Task<> writeSheet(URL input, URL output, ContactSheetForm form, std::shared_ptr<ProgressMeter> meter);

    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
};

} // namespace corvanta
