#pragma once

#include "support/Processes.hpp"

#include <platform/FFmpegKit.hpp>

#include <algorithm>

namespace corvanta::test {

inline constexpr const char* ffmpegVariable = "CORVANTA_FFMPEG";

enum class Tool { ffmpeg, ffprobe };

/// Starts one session and collects what its callbacks bring.
class SessionProbe {
  public:
    explicit SessionProbe(const std::string& command, Tool tool = Tool::ffmpeg,
                          StatisticsCallback onStatistics = nullptr)
        : seen_(std::make_shared<Seen>()) {
        const auto onComplete = [seen = seen_](const std::shared_ptr<Session>& ended) {
            const std::lock_guard lock(seen->mutex);
            ++seen->completions;
            seen->ended = ended;
        };
        const auto onLog = [seen = seen_](const Log& log) {
            const std::lock_guard lock(seen->mutex);
            seen->lines.push_back(log.getMessage());
        };
        session_ = tool == Tool::ffmpeg
                       ? FFmpegKit::executeAsync(command, onComplete, onLog, std::move(onStatistics))
                       : FFprobeKit::executeAsync(command, onComplete);
    }

    std::int64_t id() const { return session_->getSessionId(); }
    SessionState state() const { return session_->getState(); }
    std::string output() const { return session_->getOutput().value_or("absent"); }

    int completions() const {
        const std::lock_guard lock(seen_->mutex);
        return seen_->completions;
    }
    std::vector<std::string> lines() const {
        const std::lock_guard lock(seen_->mutex);
        return seen_->lines;
    }
    bool waitForLine(const std::string& line) const {
        return eventually([&] { return std::ranges::count(lines(), line) > 0; });
    }

    /// The return code once the completion callback has come; -1 if it doesn't come, or for another session.
    int wait() const {
        if (!eventually([this] { return completions() > 0; })) {
            return -1;
        }
        const std::lock_guard lock(seen_->mutex);
        return seen_->ended == session_ && session_->getReturnCode() ? session_->getReturnCode()->getValue()
                                                                     : -1;
    }

  private:
    struct Seen {
        std::mutex mutex;
        int completions = 0;
        std::shared_ptr<Session> ended;
        std::vector<std::string> lines;
    };

    std::shared_ptr<Seen> seen_;
    std::shared_ptr<Session> session_;
};

} // namespace corvanta::test
