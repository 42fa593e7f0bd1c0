#include <platform/FFmpegKit.hpp>

#include <platform/CommandWords.hpp>
#include <platform/FFmpegPrograms.hpp>
#include <platform/InProcessProbe.hpp>
#include <platform/MediaOpening.hpp>
#include <platform/NeverDestroyed.hpp>
#include <platform/ProbeAhead.hpp>
#include <platform/SeekNearFrame.hpp>
#include <platform/SessionRunner.hpp>

#include <algorithm>
#include <utility>

namespace corvanta {

namespace {

struct Settings {
    std::mutex mutex;
    RunLimits limits;
    std::optional<std::string> logLevel;
    LogCallback onLog;
    StatisticsCallback onStatistics;
    bool probesInProcess = true;
};

Settings& settings() {
    static NeverDestroyed<Settings> shared;
    return *shared;
}

// The kernel takes no argument of 128 KiB or more, which the graph of a merge of many files can be: it is
// handed over as the standard input.
void moveLongGraphToInput(CommandPlan& plan) {
    constexpr std::size_t tooLong = std::size_t{128} << 10U;
    const auto option = std::ranges::find(plan.arguments, "-filter_complex");
    if (option == plan.arguments.end() || option + 1 == plan.arguments.end() || option[1].size() < tooLong) {
        return;
    }
    option[0] = "-filter_complex_script";
    plan.input = std::exchange(option[1], "pipe:0");
}

// A host that names a program of its own wants that one's answers.
bool isProbingInProcess() {
    const bool isChosen = isFFprobeChosen();
    const std::lock_guard lock(settings().mutex);
    return settings().probesInProcess && !isChosen;
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

std::optional<std::string> Session::getFailure() const {
    const std::lock_guard lock(mutex_);
    return failure_;
}

std::shared_ptr<Session> FFmpegKit::executeAsync(const std::string& command, CompleteCallback onComplete,
                                                 LogCallback onLog, StatisticsCallback onStatistics) {
    return executeAsync(command, std::move(onComplete), std::move(onLog), std::move(onStatistics), nullptr);
}

std::shared_ptr<Session> FFmpegKit::executeAsync(const std::string& command, CompleteCallback onComplete,
                                                 LogCallback onLog, StatisticsCallback onStatistics,
                                                 StartCallback onStart) {
    CommandPlan plan;
    plan.onStart = std::move(onStart);
    plan.program = ffmpegProgram();
    plan.arguments = {"-nostdin", "-hide_banner"};
    plan.onComplete = std::move(onComplete);
    {
        Settings& shared = settings();
        const std::lock_guard lock(shared.mutex);
        plan.onLog = both(std::move(onLog), shared.onLog);
        plan.onStatistics = both(std::move(onStatistics), shared.onStatistics);
        plan.limits = shared.limits;
        if (shared.logLevel) {
            plan.arguments.insert(plan.arguments.end(), {"-loglevel", *shared.logLevel});
        }
    }
    if (plan.onStatistics || plan.limits.stall) {
        plan.arguments.insert(plan.arguments.end(), {"-nostats", "-progress", "pipe:3"});
    }
    for (std::string& word : withOpeningLimits(withSeekNearFrame(splitCommand(command)))) {
        plan.arguments.push_back(std::move(word));
    }
    moveLongGraphToInput(plan);
    return SessionRunner::shared().run(SessionRunner::Program::ffmpeg, std::move(plan));
}

void FFmpegKit::cancel(std::int64_t sessionId) { SessionRunner::shared().cancel(sessionId); }

void FFmpegKit::cancel() { SessionRunner::shared().cancelAll(); }

std::shared_ptr<Session> FFprobeKit::executeAsync(const std::string& command, CompleteCallback onComplete) {
    CommandPlan plan;
    plan.program = ffprobeProgram();
    std::vector<std::string> words = splitCommand(command);
    if (auto file = fileOfPlainProbe(words); file && isProbingInProcess()) {
        plan.answer = [asked = *std::move(file)](const std::stop_token& stop) {
            return probeInProcess(asked, stop);
        };
    }
    plan.arguments = withOpeningLimits(std::move(words));
    plan.keepOutput = true;
    {
        const std::lock_guard lock(settings().mutex);
        plan.limits = settings().limits;
    }
    plan.onComplete = std::move(onComplete);
    return SessionRunner::shared().run(SessionRunner::Program::ffprobe, std::move(plan));
}

std::shared_ptr<void> FFprobeKit::prepare(std::vector<std::string> files) {
    return isProbingInProcess() ? std::make_shared<ProbeAhead>(std::move(files)) : nullptr;
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

void FFmpegKitConfig::setMaximumRuns(std::size_t ffmpeg, std::size_t ffprobe) {
    SessionRunner::shared().setLimit(SessionRunner::Program::ffmpeg, ffmpeg);
    SessionRunner::shared().setLimit(SessionRunner::Program::ffprobe, ffprobe);
}

void FFmpegKitConfig::setRunLimits(const RunLimits& limits) {
    const std::lock_guard lock(settings().mutex);
    settings().limits = limits;
}

void FFmpegKitConfig::setProbingInProcess(bool isInProcess) {
    const std::lock_guard lock(settings().mutex);
    settings().probesInProcess = isInProcess;
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
