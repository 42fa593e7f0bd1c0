#pragma once

#include <CorvantaSdkVideo/Commands/Concat/ConcatInputValidator.hpp>
#include <CorvantaSdkVideo/Commands/Helpers/StoredRequestEngine.hpp>
#include <CorvantaSdkVideo/Commands/Join/JoinForm.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandGenerator.hpp>

#include <memory>
#include <string>
#include <vector>

namespace corvanta {

/// Joins videos of like format by stream copy, through a list file that lies in the documents directory
/// during the run. After a failure or a cancel the list file and a partial output stay. An input whose path a
/// list file can't hold (one with a blank or a quote) is read through a symbolic link.
class CorvantaSdkVideoConcatEngine : public StoredRequestEngine {
  public:
    /// Pixels. Nothing is checked against it: copied streams keep the size that they have.
    static constexpr double minimumSupportedResolutionDimension = 128.0;

    CorvantaSdkVideoConcatEngine(std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
                                 FFMPEGCommandGenerator commandGenerator,
                                 std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                                 ConcatInputValidator inputValidator,
                                 VideosInformationGenerator videosInformationGenerator,
                                 CorvantaSdkVideoFileValidator videosValidator,
                                 std::shared_ptr<VideoStore> store);

  private:
    /// Failures before the run leave the row as it was; a failed run throws `concatFailed`.
    Task<CorvantaSdkVideoRequestResult> carryOut(std::shared_ptr<CorvantaSdkVideoRequest> request) override;

    Task<> join(UUID id, std::vector<CorvantaSdkVideoInformation> information, URL outputURL);
    /// The same for a request that a join has made.
    Task<> joinAlike(UUID id, std::vector<JoinFile> files, URL outputURL);

    FFMPEGCommandGenerator commandGenerator_;
    ConcatInputValidator inputValidator_;
    VideosInformationGenerator videosInformationGenerator_;
    CorvantaSdkVideoFileValidator videosValidator_;
};

} // namespace corvanta
