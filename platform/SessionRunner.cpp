#include <platform/SessionRunner.hpp>

#include <platform/BlockedSignals.hpp>
#include <platform/Errors.hpp>

#include <algorithm>
#include <random>
#include <string>
#include <thread>
#include <utility>

#include <sys/resource.h>

namespace corvanta {

namespace asio = boost::asio;

namespace {

// An id that a dead process has left in a store must not be that of a session here. 52 bits, so that also
// readers that know numbers as doubles alone tell ids apart.
std::int64_t firstId() {
    std::random_device source;
    return std::uniform_int_distribution<std::int64_t>(1, std::int64_t{1} << 52U)(source);
}

// More of them would not be done sooner. Some are short, so there is room for a few beside the long ones.
std::size_t bearableRuns() {
    constexpr std::size_t fewest = 4;
    constexpr std::size_t descriptorsForEach = 32;
    const std::size_t byProcessors =
        std::max<std::size_t>(fewest, 2 * std::size_t{std::thread::hardware_concurrency()});
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    return std::clamp<std::size_t>(descriptors.rlim_cur / descriptorsForEach, 1, byProcessors);
}

// Callbacks run in here.
void runUntilTheProcessEnds(asio::io_context& context) {
    try {
        context.run();
    } catch (const std::exception& error) {
        fatalError((std::string("A session's callback threw: ") + error.what()).c_str());
    }
}

} // namespace

SessionRunner& SessionRunner::shared() {
    static NeverDestroyed<SessionRunner> runner;
    return *runner;
}

SessionRunner::SessionRunner()
    : lastId_(firstId()), lines_{RunLine(bearableRuns()), RunLine(bearableRuns()), RunLine(bearableRuns())},
      work_(asio::make_work_guard(context_)) {
    const BlockedSignals duringTheStart;
    constexpr int threads = 2;
    for (int thread = 0; thread < threads; ++thread) {
        std::thread([this] { runUntilTheProcessEnds(context_); }).detach();
    }
}

// Starting and cancelling a run only posts, so that the lock may be held.

std::shared_ptr<Session> SessionRunner::run(Program program, CommandPlan plan) {
    const std::lock_guard lock(mutex_);
    const std::int64_t id = ++lastId_;
    auto session = std::make_shared<Session>(id);
    CommandRun::Line line{[this, program, id] { leave(program, id); },
                          [this, program, id] { return putBack(program, id); }};
    lineOf(program).enter(id,
                          std::make_shared<CommandRun>(context_, session, std::move(plan), std::move(line)));
    return session;
}

void SessionRunner::leave(Program program, std::int64_t id) {
    const std::lock_guard lock(mutex_);
    lineOf(program).leave(id);
    // What this one held may be what the first of another line lacked.
    for (RunLine& line : lines_) {
        line.advance();
    }
}

bool SessionRunner::putBack(Program program, std::int64_t id) {
    const std::lock_guard lock(mutex_);
    const bool othersRun = lines_[0].running() + lines_[1].running() > 1;
    if (othersRun) {
        lineOf(program).putBack(id);
    }
    return othersRun;
}

void SessionRunner::setLimit(Program program, std::size_t limit) {
    const std::lock_guard lock(mutex_);
    lineOf(program).setLimit(limit == 0 ? bearableRuns() : limit);
}

void SessionRunner::cancel(std::int64_t id) {
    const std::lock_guard lock(mutex_);
    for (RunLine& line : lines_) {
        line.cancel(id);
    }
}

void SessionRunner::cancelAll() {
    const std::lock_guard lock(mutex_);
    for (RunLine& line : lines_) {
        line.cancelAll();
    }
}

} // namespace corvanta
