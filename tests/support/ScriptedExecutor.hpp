#pragma once

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>

#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace corvanta::test {

/// The record of a video and an audio track that every file has, unless a test changes something in it.
inline CorvantaSdkVideoInformation plainInformation(const URL& url) {
    CorvantaSdkVideoTrackInformation video(0, 1920, 1080, "h264", "avc1", "yuv420p", 5'000'000, "30/1", 0,
                                           4000);
    CorvantaSdkVideoAudioTrackInformation audio{1, "aac", "mp4a", "fltp", 96'000, 48'000, 2, "stereo", 4000};
    return {url, 1000, 4000, "mov,mp4", {video}, {audio}, Orientation::landscape, {1920, 1080}};
}

/// Runs nothing: notes what it is asked for and answers as it is told. A run can be held until it is released
/// or cancelled. For one thread at a time.
class ScriptedExecutor : public FFMPEGCommandExecutor {
  public:
    using FFMPEGCommandExecutor::executeFFMPEGCommand;
    using Notes = std::vector<std::string>;

    /// Gets "probe NAME", "run" and "cancel ID".
    std::shared_ptr<Notes> notes = std::make_shared<Notes>();
    /// The answer to a probe; may throw.
    std::function<CorvantaSdkVideoInformation(const URL&)> onProbe = plainInformation;
    /// What a run does after its session has an id; may throw.
    std::function<void(const std::string& script)> onRun = [](const std::string&) {};
    /// Called at each cancel, after the held run was told.
    std::function<void()> onCancel = [] {};
    bool hold = false;
    /// Whether a run tells its session's id, which is 7.
    bool tellsSession = true;

    std::vector<std::string> scripts;

    void release() { end(0); }

    void cancelCommandExecution(std::int64_t sessionId) override {
        notes->push_back("cancel " + std::to_string(sessionId));
        end(255);
        onCancel();
    }

    Task<> executeFFMPEGCommand(std::string command, OnUpdateSessionId onUpdateSessionId) override {
        notes->push_back("run");
        scripts.push_back(command);
        if (onUpdateSessionId && tellsSession) {
            onUpdateSessionId(7);
        }
        onRun(command);
        if (!hold) {
            co_return;
        }
        const auto executor = co_await boost::asio::this_coro::executor;
        gate_ = std::make_shared<boost::asio::steady_timer>(executor,
                                                            boost::asio::steady_timer::time_point::max());
        boost::system::error_code ended;
        co_await gate_->async_wait(boost::asio::redirect_error(boost::asio::use_awaitable, ended));
        if (returnCode_ != 0) {
            throw PlatformError("COMPLETED", returnCode_);
        }
    }

    Task<ExecutionResult> executeFFMPEGProbeCommand(std::string) override {
        throw PlatformError("FAILED", 127);
        co_return ExecutionResult{};
    }

    Task<CorvantaSdkVideoInformation> getMediaInformation(URL url) override {
        notes->push_back("probe " + url.lastPathComponent());
        co_return onProbe(url);
    }

  private:
    void end(int returnCode) {
        if (gate_) {
            returnCode_ = returnCode;
            gate_->cancel();
        }
    }

    std::shared_ptr<boost::asio::steady_timer> gate_;
    int returnCode_ = 0;
};

} // namespace corvanta::test
