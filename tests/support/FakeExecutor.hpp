#pragma once

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace corvanta::test {

/// Runs nothing: writes down what it was asked for and answers as told.
class FakeExecutor : public FFMPEGCommandExecutor {
  public:
    /// "ffmpeg {command}", "ffprobe {arguments}", "probe {URL}" and "cancel {id}", in order.
    std::vector<std::string> calls;
    /// What a run does in place of ffmpeg; may throw.
    std::function<void(const std::string& command)> onCommand = [](const std::string&) {};
    /// What a probe gives; may throw.
    std::function<CorvantaSdkVideoInformation(const URL&)> onProbe = [](const URL& url) {
        return CorvantaSdkVideoInformation(url, 0, 0, "", {}, {}, Orientation::portrait, {});
    };

    void cancelCommandExecution(std::int64_t sessionId) override {
        calls.push_back("cancel " + std::to_string(sessionId));
    }
    Task<> executeFFMPEGCommand(std::string command, OnUpdateSessionId onUpdateSessionId) override {
        calls.push_back("ffmpeg " + command);
        if (onUpdateSessionId) {
            onUpdateSessionId(1);
        }
        onCommand(command);
        co_return;
    }
    Task<ExecutionResult> executeFFMPEGProbeCommand(std::string arguments) override {
        calls.push_back("ffprobe " + arguments);
        co_return ExecutionResult{};
    }
    Task<CorvantaSdkVideoInformation> getMediaInformation(URL url) override {
        calls.push_back("probe " + url.absoluteString());
        co_return onProbe(url);
    }
};

class FixedCredentials : public CorvantaCredentialsManager {
  public:
    explicit FixedCredentials(bool authenticated) : authenticated_(authenticated) {}
    bool isUserAuthenticated() override { return authenticated_; }

  private:
    bool authenticated_;
};

/// The text of the error that a call throws, or "done".
template <typename Call>
std::string outcomeOf(Call call) {
    try {
        call();
        return "done";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace corvanta::test
