#pragma once

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// Tells whether files may be joined by stream copy. Immutable; outlives the tasks that it gives.
class ConcatInputValidator {
  public:
    explicit ConcatInputValidator(
        std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
            std::make_shared<FFMPEGCommandExecutorImplementation>(),
        std::shared_ptr<CorvantaCredentialsManager> credentialsManager =
            std::make_shared<CorvantaCredentialsManagerImp>(),
        VideosInformationGenerator videosInformationGenerator = VideosInformationGenerator(),
        CorvantaSdkVideoFileValidator videosValidator = {});

    /// Too few or missing files, and nobody logged in, are errors; different or unreadable files are a plain
    /// "no".
    Task<bool> canProcessConcatWith(std::vector<URL> videos) const;

    /// What makes the answer a "no"; nothing for a "yes".
    Task<std::optional<CorvantaSdkVideoError>> obstacleToConcat(std::vector<URL> videos) const;

    /// Throws `invalidInputFiles` with the first difference from the first file: its format, then its video
    /// tracks, then its audio tracks. Durations, bit rates and stream indexes may differ. `videos` must not
    /// be empty.
    Task<> validateVideosForConcat(std::vector<URL> videos) const;

  private:
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
    VideosInformationGenerator videosInformationGenerator_;
    CorvantaSdkVideoFileValidator videosValidator_;
};

} // namespace corvanta
