#pragma once

#include <platform/RunLimits.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

/// Runs ffmpeg and ffprobe as child processes with numeric session ids.
///
/// A child gets no shell, an empty standard input, a process group of its own and no descriptor of the
/// host's; it is killed when the host dies. What it writes is always drained. The programs come from PATH, or
/// from the environment variables CORVANTA_FFMPEG and CORVANTA_FFPROBE, read at each start.
///
/// A host that ignores SIGCHLD, or waits for children that aren't its own, takes the return codes away: every
/// run then reads as cancelled.
///
/// So many run at a time, further ones wait in line, also for room that the machine lacks (descriptors,
/// processes) until another one has ended.
///
/// Callbacks come on the runner's threads, for one session one after the other, the completion callback last
/// and exactly once. One that throws ends the host.
///
/// Nothing is torn down when the host returns from `main` or calls `exit`: sessions run on until the process
/// is gone, and are killed with it. Callbacks may come as late as that, so what they use must live as long.
namespace corvanta {

enum class SessionState { created, running, failed, completed };

class ReturnCode {
  public:
    /// What a cancelled run, and one that died by a signal, ends with.
    static constexpr std::int32_t cancelled = 255;
    /// What a session ends with whose program could not be started.
    static constexpr std::int32_t notStarted = 127;
    /// What a run ends with that was stopped because its output did not grow (RunLimits::stall).
    static constexpr std::int32_t stalled = 124;

    explicit ReturnCode(std::int32_t value) : value_(value) {}

    std::int32_t getValue() const { return value_; }
    bool isValueSuccess() const { return value_ == 0; }
    bool isValueCancel() const { return value_ == cancelled; }

  private:
    std::int32_t value_;
};

/// One run of a command. All operations may be called from any thread.
class Session {
  public:
    explicit Session(std::int64_t id) : id_(id) {}

    /// Positive and rising. The first one is drawn anew by each process, so that the id that a dead process
    /// has left somewhere is no session of this one.
    std::int64_t getSessionId() const { return id_; }
    /// Absent until the session has ended.
    std::optional<ReturnCode> getReturnCode() const;
    /// `failed` means that the program could not be started; a program that ran is `completed`, whatever it
    /// returned.
    SessionState getState() const;
    /// What ffprobe wrote to its standard output, at most `outputLimit` bytes; absent before the end, and for
    /// ffmpeg.
    std::optional<std::string> getOutput() const;

    /// Why the program could not be started; absent unless the session is `failed`.
    std::optional<std::string> getFailure() const;

    static constexpr std::size_t outputLimit = std::size_t{64} << 20U;

  private:
    friend class CommandRun;

    const std::int64_t id_;
    mutable std::mutex mutex_;
    SessionState state_ = SessionState::created;
    std::optional<ReturnCode> returnCode_;
    std::optional<std::string> output_;
    std::optional<std::string> failure_;
};

/// One line of ffmpeg's log.
class Log {
  public:
    Log(std::int64_t sessionId, std::string message) : sessionId_(sessionId), message_(std::move(message)) {}

    std::int64_t getSessionId() const { return sessionId_; }
    const std::string& getMessage() const { return message_; }

  private:
    std::int64_t sessionId_;
    std::string message_;
};

/// How far a running ffmpeg has come.
struct Statistics {
    std::int64_t sessionId = 0;
    /// Video frames written.
    std::int64_t frame = 0;
    /// Milliseconds of output written.
    std::int64_t timeMillis = 0;
    /// Output time per real time; 0 as long as it isn't known.
    double speed = 0;
};

using CompleteCallback = std::function<void(const std::shared_ptr<Session>&)>;
using LogCallback = std::function<void(const Log&)>;
using StartCallback = std::function<void()>;
using StatisticsCallback = std::function<void(const Statistics&)>;

class FFmpegKit {
  public:
    /// Starts ffmpeg with a whole command text and returns at once. Words are separated by blanks; double
    /// quotes group, and nothing else is special. An unquoted word that is a "file" URL is passed on as its
    /// decoded path. Callbacks may be empty.
    static std::shared_ptr<Session> executeAsync(const std::string& command, CompleteCallback onComplete,
                                                 LogCallback onLog, StatisticsCallback onStatistics);
    /// The same; `onStart` comes when the session leaves the line and its program runs.
    static std::shared_ptr<Session> executeAsync(const std::string& command, CompleteCallback onComplete,
                                                 LogCallback onLog, StatisticsCallback onStatistics,
                                                 StartCallback onStart);

    /// Asks the running session of that id, of ffmpeg or ffprobe, to stop. Returns at once; an unknown or
    /// ended id, and a second call, do nothing. ffmpeg closes its output file properly.
    static void cancel(std::int64_t sessionId);

    /// Asks all running sessions to stop.
    static void cancel();
};

class FFprobeKit {
  public:
    /// The same for ffprobe.
    static std::shared_ptr<Session> executeAsync(const std::string& command, CompleteCallback onComplete);

    /// Tells that the module's own question is about to be asked about these files, as the commands will name
    /// them: as long as what it gives lives, they are read ahead where they are read in this process.
    static std::shared_ptr<void> prepare(std::vector<std::string> files);
};

/// Process-wide settings. Safe from any thread; they count for sessions started afterwards.
class FFmpegKitConfig {
  public:
    /// "CREATED", "RUNNING", "FAILED" or "COMPLETED"
    static std::optional<std::string> sessionStateToString(SessionState state);

    /// How many of each program run at once; 0, as at first, is as many as the machine bears: twice its
    /// processors, at least 4, and at most one for each 32 descriptors that the process may open. Further
    /// sessions wait in line, `created`, and start in order; a cancelled one leaves the line at once. Counts
    /// also for those that wait.
    static void setMaximumRuns(std::size_t ffmpeg, std::size_t ffprobe);

    /// What each run may take; at first there is no limit. See recommendedRunLimits().
    static void setRunLimits(const RunLimits& limits);

    /// Whether the module's own question about a file ("-i FILE -v quiet -print_format json -show_format
    /// -show_streams -hide_banner") is answered in this process, by the libraries that ffprobe consists of
    /// and with what it would write; so it is at first. What can't be answered so within 5 s for opening and
    /// again for reading, and every other command, is left to ffprobe, as are all if CORVANTA_FFPROBE is set.
    /// RunLimits count for that program alone.
    ///
    /// A host that takes files from strangers turns it off: a fault in a decoder then ends a child alone.
    /// What else is read of a file, such as its duration and its display matrix, is read here all the same.
    static void setProbingInProcess(bool isInProcess);

    /// One of ffmpeg's names ("quiet", "error", "warning", "info", "debug"); absent leaves ffmpeg's own
    /// default.
    static void setLogLevel(std::optional<std::string> level);

    /// Called for every ffmpeg session, after the session's own callback. Empty turns it off.
    static void enableStatisticsCallback(StatisticsCallback callback);
    static void enableLogCallback(LogCallback callback);
};

} // namespace corvanta
