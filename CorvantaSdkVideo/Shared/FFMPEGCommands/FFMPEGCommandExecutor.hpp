#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>
#include <platform/Task.hpp>
#include <platform/URL.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvanta {

class ProgressMeter;

/// Everything that ffprobe wrote to its output.
struct ExecutionResult {
    std::string output;
};

/// Runs ffmpeg and ffprobe. Implementations may be called concurrently. A caller that Asio cancels has its
/// run stopped, and gets Asio's `operation_aborted` once that has ended without success.
class FFMPEGCommandExecutor {
  public:
    using OnUpdateSessionId = std::function<void(std::int64_t)>;

    virtual ~FFMPEGCommandExecutor() = default;

    /// Asks the running session to stop. Doesn't wait and reports nothing.
    virtual void cancelCommandExecution(std::int64_t sessionId) = 0;

    /// Runs ffmpeg with a whole command text. `onUpdateSessionId` is called once, on the calling thread, as
    /// soon as the session has its id; it must not throw. Throws PlatformError (domain: the session state's
    /// name, code: the return code) if the run didn't end with 0, or with an output that is not whole (code:
    /// 1); a cancelled one is no exception to that.
    virtual Task<> executeFFMPEGCommand(std::string command, OnUpdateSessionId onUpdateSessionId) = 0;

    /// Runs ffprobe with a whole arguments text. Throws PlatformError in the same way.
    virtual Task<ExecutionResult> executeFFMPEGProbeCommand(std::string arguments) = 0;

    /// Probes a file. Throws `getInformationFailed`, or `missingVideoTrackToMerge` if the display transform
    /// can't be read although there is a video track.
    virtual Task<CorvantaSdkVideoInformation> getMediaInformation(URL url) = 0;

    /// Tells that these files are about to be probed, in this order, which may then be faster as long as what
    /// it gives lives. Asks nothing of an executor.
    virtual std::shared_ptr<void> prepareMediaInformation(const std::vector<URL>& urls);

    /// For callers that don't need the session id.
    Task<> executeFFMPEGCommand(std::string command);

    /// The same as the part of an operation that `meter`, which may be absent, is in, up to the part's end.
    /// The meter goes along within `onUpdateSessionId`: an executor that knows nothing of it tells no
    /// fraction.
    Task<> executeMeasured(std::string command, OnUpdateSessionId onUpdateSessionId,
                           std::shared_ptr<ProgressMeter> meter);
};

/// Stateless: every run is a session of its own.
class FFMPEGCommandExecutorImplementation : public FFMPEGCommandExecutor {
  public:
    using FFMPEGCommandExecutor::executeFFMPEGCommand;

    void cancelCommandExecution(std::int64_t sessionId) override;
    /// Writes ffmpeg's log to standard output.
    Task<> executeFFMPEGCommand(std::string command, OnUpdateSessionId onUpdateSessionId) override;
    Task<ExecutionResult> executeFFMPEGProbeCommand(std::string arguments) override;
    Task<CorvantaSdkVideoInformation> getMediaInformation(URL url) override;
    std::shared_ptr<void> prepareMediaInformation(const std::vector<URL>& urls) override;
};

} // namespace corvanta
