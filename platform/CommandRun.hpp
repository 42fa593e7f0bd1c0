#pragma once

#include <platform/ChildProcess.hpp>
#include <platform/FFmpegKit.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace corvanta {

/// What to run, and whom to tell.
struct CommandPlan {
    std::string program;
    std::vector<std::string> arguments;
    /// What the program reads from its standard input.
    std::string input;
    RunLimits limits;
    /// What answers in the program's place, if it can; absent for most. Called on a thread where it may
    /// block, and must not throw. Without an answer the program runs.
    std::function<std::optional<std::string>(const std::stop_token&)> answer;
    /// One that may take minutes holds up no brief one.
    enum class Answering { brief, lasting } answering = Answering::brief;
    bool keepOutput = false;
    /// The program has been started, or its answer is being made.
    StartCallback onStart;
    CompleteCallback onComplete;
    LogCallback onLog;
    StatisticsCallback onStatistics;
};

/// The life of one session: starts the child, drains it, waits for its end, and tells so once; or is done
/// without a child.
/// Everything but the constructor, `start` and `cancel` runs on the strand.
class CommandRun : public std::enable_shared_from_this<CommandRun> {
  public:
    /// Called on the strand.
    struct Line {
        std::function<void()> leave;
        /// Whether the run, which the machine has no room for, will be started again.
        std::function<bool()> putBack;
    };

    CommandRun(boost::asio::io_context& context, std::shared_ptr<Session> session, CommandPlan plan,
               Line line);

    void start();
    void cancel();

  private:
    using Descriptor = boost::asio::posix::stream_descriptor;
    using Consumer = std::function<void(std::string_view)>;
    struct Drain {
        Drain(boost::asio::strand<boost::asio::io_context::executor_type> strand, int descriptor,
              Consumer consumer)
            : source(strand, descriptor), consume(std::move(consumer)) {}
        Descriptor source;
        Consumer consume;
        std::array<char, 16384> buffer{};
    };

    void begin();
    void answered(std::optional<std::string> output);
    void spawn();
    void setRunning();
    void drain(UniqueFd& source, Consumer consumer);
    void readMore(const std::shared_ptr<Drain>& drain);
    void waitForExit();
    void terminate();
    void watchGrowth();
    void endIfDone();
    void end(SessionState state, int returnCode);

    void consumeLog(std::string_view bytes);
    void consumeProgress(std::string_view bytes);

    boost::asio::strand<boost::asio::io_context::executor_type> strand_;
    std::shared_ptr<Session> session_;
    CommandPlan plan_;
    Line line_;
    std::stop_source cancelled_;

    std::unique_ptr<ChildProcess> child_;
    std::optional<Descriptor> exited_;
    boost::asio::steady_timer killTimer_;
    boost::asio::steady_timer drainTimer_;
    boost::asio::steady_timer stallTimer_;
    bool stalled_ = false;
    bool triedAlone_ = false;
    bool terminating_ = false;
    std::vector<std::weak_ptr<Drain>> drains_;
    std::size_t openDrains_ = 0;
    std::optional<int> exitStatus_;

    std::string output_;
    std::string logLine_;
    std::string progressLine_;
    Statistics statistics_;
    std::int64_t outputBytes_ = 0;
    // The most of bytes, frames and time that the output has had.
    std::array<std::int64_t, 3> grown_{};
};

} // namespace corvanta
