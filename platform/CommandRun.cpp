#include <platform/CommandRun.hpp>

#include <platform/BlockedSignals.hpp>
#include <platform/NeverDestroyed.hpp>

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace corvanta {

namespace asio = boost::asio;

namespace {

// ffmpeg needs 0.2 s to close its file; one that doesn't react at all is killed after this.
constexpr std::chrono::seconds killAfter{10};

// A grandchild that left the group could hold a pipe open for ever.
constexpr std::chrono::seconds drainAfterExit{2};

// A line without end is handed on in pieces.
constexpr std::size_t longestLine = 65536;

// Calls `onLine` for every line of `bytes`; what has no end yet waits in `rest`.
template <typename OnLine>
void splitLines(std::string& rest, std::string_view bytes, OnLine onLine) {
    for (const char character : bytes) {
        if (character == '\n' || character == '\r' || rest.size() == longestLine) {
            if (!rest.empty()) {
                onLine(std::string_view(rest));
                rest.clear();
            }
        }
        if (character != '\n' && character != '\r') {
            rest += character;
        }
    }
}

// Of descriptors, processes or memory, which other runs hold as well.
bool isShortage(const std::error_code& error) {
    return error == std::errc::too_many_files_open || error == std::errc::too_many_files_open_in_system ||
           error == std::errc::resource_unavailable_try_again || error == std::errc::not_enough_memory;
}

// A few threads of their own, so that a slow file holds up no other session's callbacks. The host's signal
// handlers have no business on them.
struct AnsweringThreads : asio::thread_pool {
    AnsweringThreads() : AnsweringThreads(BlockedSignals()) {}

  private:
    explicit AnsweringThreads(const BlockedSignals&)
        : asio::thread_pool(std::clamp(std::thread::hardware_concurrency(), 1U, 4U)) {}
};

// An hour of sound that is cleaned keeps nobody from being told how long a clip is.
AnsweringThreads& threadsFor(CommandPlan::Answering answering) {
    if (answering == CommandPlan::Answering::brief) {
        static NeverDestroyed<AnsweringThreads> brief;
        return *brief;
    }
    // Not started before they are needed.
    static NeverDestroyed<AnsweringThreads> lasting;
    return *lasting;
}

template <typename Number>
void readNumber(std::string_view text, Number& number) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(' ')));
    std::from_chars(text.data(), text.data() + text.size(), number);
}

} // namespace

CommandRun::CommandRun(asio::io_context& context, std::shared_ptr<Session> session, CommandPlan plan,
                       Line line)
    : strand_(asio::make_strand(context)), session_(std::move(session)), plan_(std::move(plan)),
      line_(std::move(line)), killTimer_(strand_), drainTimer_(strand_), stallTimer_(strand_) {
    statistics_.sessionId = session_->getSessionId();
}

void CommandRun::start() {
    asio::post(strand_, [self = shared_from_this()] { self->begin(); });
}

void CommandRun::cancel() {
    if (cancelled_.request_stop()) {
        asio::post(strand_, [self = shared_from_this()] { self->terminate(); });
    }
}

void CommandRun::begin() {
    const auto answer = std::exchange(plan_.answer, nullptr);
    if (answer == nullptr || cancelled_.stop_requested()) {
        spawn();
        return;
    }
    setRunning();
    try {
        asio::post(threadsFor(plan_.answering), [self = shared_from_this(), answer] {
            asio::post(self->strand_, [self, output = answer(self->cancelled_.get_token())]() mutable {
                self->answered(std::move(output));
            });
        });
    } catch (const std::system_error&) {
        // No thread could be started; perhaps a process can.
        spawn();
    }
}

void CommandRun::answered(std::optional<std::string> output) {
    if (!output || cancelled_.stop_requested()) {
        spawn();
        return;
    }
    output_ = *std::move(output);
    end(SessionState::completed, 0);
}

void CommandRun::spawn() {
    if (cancelled_.stop_requested()) {
        end(SessionState::completed, ReturnCode::cancelled);
        return;
    }
    ChildProcess::Options options{.input = plan_.input, .limits = plan_.limits};
    if (options.limits.memory) {
        const auto inputs = std::ranges::count(plan_.arguments, "-i");
        options.limits.memory = addressSpaceFor(*options.limits.memory, static_cast<std::size_t>(inputs));
    }
    try {
        child_ = std::make_unique<ChildProcess>(plan_.program, plan_.arguments, options);
    } catch (const std::system_error& error) {
        if (isShortage(error.code())) {
            if (line_.putBack()) {
                triedAlone_ = false;
                return;
            }
            // The others may have ended since: only an attempt beside nobody tells.
            if (!std::exchange(triedAlone_, true)) {
                spawn();
                return;
            }
        }
        const std::string failure = plan_.program + " could not be started: " + error.what();
        {
            const std::lock_guard lock(session_->mutex_);
            session_->failure_ = failure;
        }
        if (plan_.onLog) {
            plan_.onLog(Log(session_->getSessionId(), failure));
        }
        end(SessionState::failed, ReturnCode::notStarted);
        return;
    }
    setRunning();
    drain(child_->standardOutput, [this](std::string_view bytes) {
        if (plan_.keepOutput) {
            output_ += bytes.substr(0, Session::outputLimit - output_.size());
            watchGrowth();
        }
    });
    drain(child_->standardError, [this](std::string_view bytes) { consumeLog(bytes); });
    drain(child_->progress, [this](std::string_view bytes) { consumeProgress(bytes); });
    waitForExit();
    watchGrowth();
}

void CommandRun::setRunning() {
    {
        const std::lock_guard lock(session_->mutex_);
        session_->state_ = SessionState::running;
    }
    if (const auto onStart = std::exchange(plan_.onStart, nullptr)) {
        onStart();
    }
}

void CommandRun::drain(UniqueFd& source, Consumer consumer) {
    auto made = std::make_shared<Drain>(strand_, source.release(), std::move(consumer));
    drains_.push_back(made);
    ++openDrains_;
    readMore(made);
}

void CommandRun::readMore(const std::shared_ptr<Drain>& drain) {
    drain->source.async_read_some(
        asio::buffer(drain->buffer),
        [self = shared_from_this(), drain](const boost::system::error_code& error, std::size_t count) {
            drain->consume(std::string_view(drain->buffer.data(), count));
            if (!error) {
                self->readMore(drain);
                return;
            }
            // Before the line is told: the next run may need just this descriptor.
            boost::system::error_code ignored;
            drain->source.close(ignored);
            --self->openDrains_;
            self->endIfDone();
        });
}

void CommandRun::waitForExit() {
    exited_.emplace(strand_, child_->exited.release());
    exited_->async_wait(Descriptor::wait_read, [self = shared_from_this()](const boost::system::error_code&) {
        self->exitStatus_ = self->child_->reap();
        self->killTimer_.cancel();
        self->stallTimer_.cancel();
        self->drainTimer_.expires_after(drainAfterExit);
        self->drainTimer_.async_wait([self](const boost::system::error_code& error) {
            if (!error) {
                for (const auto& drain : self->drains_) {
                    if (const auto open = drain.lock()) {
                        open->source.close();
                    }
                }
            }
        });
        self->endIfDone();
    });
}

// One SIGTERM lets ffmpeg close its file; a second one would make it give up at once.
void CommandRun::terminate() {
    if (child_ == nullptr || exitStatus_ || std::exchange(terminating_, true)) {
        return;
    }
    child_->signalGroup(SIGTERM);
    killTimer_.expires_after(killAfter);
    killTimer_.async_wait([self = shared_from_this()](const boost::system::error_code& error) {
        if (!error && !self->exitStatus_) {
            self->child_->signalGroup(SIGKILL);
        }
    });
}

// Waits anew for the output to stand still.
void CommandRun::watchGrowth() {
    if (!plan_.limits.stall || exitStatus_) {
        return;
    }
    stallTimer_.expires_after(*plan_.limits.stall);
    stallTimer_.async_wait([self = shared_from_this()](const boost::system::error_code& error) {
        if (error || self->exitStatus_ || self->cancelled_.stop_requested() ||
            self->stallTimer_.expiry() > std::chrono::steady_clock::now()) {
            return;
        }
        self->stalled_ = true;
        const auto seconds = std::chrono::duration<double>(*self->plan_.limits.stall).count();
        if (self->plan_.onLog) {
            self->plan_.onLog(
                Log(self->session_->getSessionId(), "Stopped, since the output has not grown for " +
                                                        std::to_string(std::llround(seconds)) + " s"));
        }
        self->terminate();
    });
}

void CommandRun::endIfDone() {
    if (exitStatus_ && openDrains_ == 0) {
        drainTimer_.cancel();
        consumeLog("\n");
        end(SessionState::completed, stalled_ ? ReturnCode::stalled : *exitStatus_);
    }
}

void CommandRun::end(SessionState state, int returnCode) {
    {
        const std::lock_guard lock(session_->mutex_);
        session_->state_ = state;
        session_->returnCode_ = ReturnCode(returnCode);
        if (plan_.keepOutput) {
            session_->output_ = std::move(output_);
        }
    }
    exited_.reset();
    line_.leave();
    if (plan_.onComplete) {
        plan_.onComplete(session_);
    }
    plan_ = {};
}

void CommandRun::consumeLog(std::string_view bytes) {
    splitLines(logLine_, bytes, [this](std::string_view line) {
        if (plan_.onLog) {
            plan_.onLog(Log(session_->getSessionId(), std::string(line)));
        }
    });
}

// Blocks of "key=value" lines, each closed by the key "progress".
void CommandRun::consumeProgress(std::string_view bytes) {
    splitLines(progressLine_, bytes, [this](std::string_view line) {
        const std::size_t equals = std::min(line.size(), line.find('='));
        const std::string_view key = line.substr(0, equals);
        const std::string_view value = line.substr(std::min(line.size(), equals + 1));
        if (key == "frame") {
            readNumber(value, statistics_.frame);
        } else if (key == "out_time_us") {
            std::int64_t microseconds = 0;
            readNumber(value, microseconds);
            statistics_.timeMillis = microseconds / 1000;
        } else if (key == "speed") {
            readNumber(value, statistics_.speed);
        } else if (key == "total_size") {
            readNumber(value, outputBytes_);
        } else if (key == "progress") {
            const std::array now{outputBytes_, statistics_.frame, statistics_.timeMillis};
            for (std::size_t index = 0; index < now.size(); ++index) {
                if (now[index] > grown_[index]) {
                    grown_[index] = now[index];
                    watchGrowth();
                }
            }
            if (plan_.onStatistics) {
                plan_.onStatistics(statistics_);
            }
        }
    });
}

} // namespace corvanta
