#pragma once

#include <platform/CommandRun.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/NeverDestroyed.hpp>
#include <platform/RunLine.hpp>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>

namespace corvanta {

/// Owns the runner's threads and knows the sessions that run. Safe from any thread.
///
/// There is one, which is never destroyed: children die with the thread that started them, so the threads
/// live as long as the process.
class SessionRunner {
  public:
    static SessionRunner& shared();

    /// Each program has a line of its own, so that no probe waits for an encode; `none` is work in process.
    enum class Program { ffmpeg, ffprobe, none };

    std::shared_ptr<Session> run(Program program, CommandPlan plan);

    /// 0: as many as the machine bears.
    void setLimit(Program program, std::size_t limit);

    /// An unknown or ended id does nothing.
    void cancel(std::int64_t id);
    void cancelAll();

  private:
    friend class NeverDestroyed<SessionRunner>;
    SessionRunner();

    void leave(Program program, std::int64_t id);
    /// False if no other run could make room.
    bool putBack(Program program, std::int64_t id);

    RunLine& lineOf(Program program) { return lines_.at(static_cast<std::size_t>(program)); }

    std::mutex mutex_;
    std::int64_t lastId_;
    std::array<RunLine, 3> lines_;
    boost::asio::io_context context_;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
};

} // namespace corvanta
