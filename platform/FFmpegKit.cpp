#include <platform/FFmpegKit.hpp>

#include <platform/CommandRun.hpp>
#include <platform/CommandWords.hpp>
#include <platform/MediaOpening.hpp>

#include <boost/asio/executor_work_guard.hpp>

#include <csignal>
#include <cstdlib>
#include <map>
#include <thread>

#include <pthread.h>

namespace corvanta {

namespace asio = boost::asio;

namespace {

struct Settings {
    std::mutex mutex;
    std::optional<std::string> logLevel;
    LogCallback onLog;
    StatisticsCallback onStatistics;
};

Settings& settings() {
    static Settings shared;
    return shared;
}

// Owns the runner's threads and knows the sessions that run. Children die with the thread that started them,
// so the threads live as long as the process.
class SessionRunner {
  public:
    static SessionRunner& shared() {
        static SessionRunner runner;
        return runner;
    }

    SessionRunner() : work_(asio::make_work_guard(context_)) {
        // The host's signal handlers have no business on these threads.
        sigset_t all;
        sigset_t previous;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous);
        for (std::jthread& thread : threads_) {
            thread = std::jthread([this] { context_.run(); });
        }
        pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    }

    ~SessionRunner() {
        context_.stop();
        for (std::jthread& thread : threads_) {
            // A callback that ends the process runs on one of them.
            if (thread.get_id() == std::this_thread::get_id()) {
                thread.detach();
            }
        }
    }

    std::shared_ptr<Session> run(CommandPlan plan) {
        std::shared_ptr<CommandRun> command;
        std::shared_ptr<Session> session;
        {
            const std::lock_guard lock(mutex_);
            const std::int64_t id = ++lastId_;
            session = std::make_shared<Session>(id);
            command =
                std::make_shared<CommandRun>(context_, session, std::move(plan), [this, id] { forget(id); });
            running_[id] = command;
        }
        command->start();
        return session;
    }

    void cancel(std::int64_t id) {
        const std::lock_guard lock(mutex_);
        if (const auto found = running_.find(id); found != running_.end()) {
            cancel(found->second);
        }
    }

    void cancelAll() {
        const std::lock_guard lock(mutex_);
        for (const auto& [id, command] : running_) {
            cancel(command);
        }
    }

  private:
    // Only posts, so the registry's lock may be held.
    static void cancel(const std::weak_ptr<CommandRun>& running) {
        if (const auto command = running.lock()) {
            command->cancel();
        }
    }

    void forget(std::int64_t id) {
        const std::lock_guard lock(mutex_);
        running_.erase(id);
    }

    std::mutex mutex_;
    std::int64_t lastId_ = 0;
    std::map<std::int64_t, std::weak_ptr<CommandRun>> running_;
    asio::io_context context_;
    asio::executor_work_guard<asio::io_context::executor_type> work_;
    std::array<std::jthread, 2> threads_;
};

std::string programFor(const char* variable, const char* name) {
    const char* chosen = std::getenv(variable);
    return chosen != nullptr && *chosen != '\0' ? chosen : name;
}

template <typename Value>
std::function<void(const Value&)> both(std::function<void(const Value&)> first,
                                       std::function<void(const Value&)> second) {
    if (!first || !second) {
        return first ? first : second;
    }
    return [first = std::move(first), second = std::move(second)](const Value& value) {
        first(value);
        second(value);
    };
}

} // namespace

std::optional<ReturnCode> Session::getReturnCode() const {
    const std::lock_guard lock(mutex_);
    return returnCode_;
}

SessionState Session::getState() const {
    const std::lock_guard lock(mutex_);
    return state_;
}

std::optional<std::string> Session::getOutput() const {
    const std::lock_guard lock(mutex_);
    return output_;
}

std::shared_ptr<Session> FFmpegKit::executeAsync(const std::string& command, CompleteCallback onComplete,
                                                 LogCallback onLog, StatisticsCallback onStatistics) {
    CommandPlan plan;
    plan.program = programFor("CORVANTA_FFMPEG", "ffmpeg");
    plan.arguments = {"-nostdin", "-hide_banner"};
    plan.onComplete = std::move(onComplete);
    {
        Settings& shared = settings();
        const std::lock_guard lock(shared.mutex);
        plan.onLog = both(std::move(onLog), shared.onLog);
        plan.onStatistics = both(std::move(onStatistics), shared.onStatistics);
        if (shared.logLevel) {
            plan.arguments.insert(plan.arguments.end(), {"-loglevel", *shared.logLevel});
        }
    }
    if (plan.onStatistics) {
        plan.arguments.insert(plan.arguments.end(), {"-nostats", "-progress", "pipe:3"});
    }
    for (std::string& word : withOpeningLimits(splitCommand(command))) {
        plan.arguments.push_back(std::move(word));
    }
    return SessionRunner::shared().run(std::move(plan));
}

void FFmpegKit::cancel(std::int64_t sessionId) { SessionRunner::shared().cancel(sessionId); }

void FFmpegKit::cancel() { SessionRunner::shared().cancelAll(); }

std::shared_ptr<Session> FFprobeKit::executeAsync(const std::string& command, CompleteCallback onComplete) {
    CommandPlan plan;
    plan.program = programFor("CORVANTA_FFPROBE", "ffprobe");
    plan.arguments = withOpeningLimits(splitCommand(command));
    plan.keepOutput = true;
    plan.onComplete = std::move(onComplete);
    return SessionRunner::shared().run(std::move(plan));
}

std::optional<std::string> FFmpegKitConfig::sessionStateToString(SessionState state) {
    switch (state) {
    case SessionState::created:
        return "CREATED";
    case SessionState::running:
        return "RUNNING";
    case SessionState::failed:
        return "FAILED";
    case SessionState::completed:
        return "COMPLETED";
    }
    return std::nullopt;
}

void FFmpegKitConfig::setLogLevel(std::optional<std::string> level) {
    const std::lock_guard lock(settings().mutex);
    settings().logLevel = std::move(level);
}

void FFmpegKitConfig::enableStatisticsCallback(StatisticsCallback callback) {
    const std::lock_guard lock(settings().mutex);
    settings().onStatistics = std::move(callback);
}

void FFmpegKitConfig::enableLogCallback(LogCallback callback) {
    const std::lock_guard lock(settings().mutex);
    settings().onLog = std::move(callback);
}

} // namespace corvanta
