#include <platform/SessionWait.hpp>

#include <platform/Cancellation.hpp>

#include <boost/asio/associated_cancellation_slot.hpp>
#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/execution/context.hpp>
#include <boost/asio/execution_context.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/query.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <exception>
#include <mutex>
#include <set>
#include <utility>

namespace corvanta {

namespace asio = boost::asio;

namespace {

using SessionPointer = std::shared_ptr<Session>;

/// A suspended caller. Destroying it drops the caller, by way of its executor.
class Caller {
  public:
    virtual ~Caller() = default;
    virtual void resume(std::exception_ptr error, SessionPointer session) = 0;
};

template <typename Handler>
class CallerOf : public Caller {
  public:
    explicit CallerOf(Handler handler)
        : handler_(std::move(handler)),
          work_(asio::make_work_guard(asio::get_associated_executor(handler_))) {}

    void resume(std::exception_ptr error, SessionPointer session) override {
        asio::post(work_.get_executor(), [handler = std::move(handler_), error = std::move(error),
                                          session = std::move(session)]() mutable {
            std::move(handler)(std::move(error), std::move(session));
        });
    }

  private:
    Handler handler_;
    // Keeps the caller's event loop running as long as the session does.
    asio::executor_work_guard<asio::associated_executor_t<Handler>> work_;
};

class SessionWait;

/// The waits that resume on one execution context. A session may end later than the context does, so they
/// live longer; while the lock is held an open list's context is alive.
struct WaitList {
    std::mutex mutex;
    bool isOpen = true;
    std::set<std::shared_ptr<SessionWait>> waits;
};

/// One caller's wait. It is resumed by whichever comes last, the session's end or the return of what started
/// the session: that may still use what the resumed caller destroys.
class SessionWait : public std::enable_shared_from_this<SessionWait> {
  public:
    SessionWait(std::shared_ptr<WaitList> list, std::unique_ptr<Caller> caller)
        : list_(std::move(list)), caller_(std::move(caller)) {}

    void sessionStarted(SessionPointer session) {
        std::unique_lock lock(list_->mutex);
        session_ = std::move(session);
        resumeIfDone();
        const bool stop = isCancelled_;
        lock.unlock();
        if (stop) {
            cancel();
        }
    }

    void sessionEnded() {
        const std::lock_guard lock(list_->mutex);
        hasEnded_ = true;
        resumeIfDone();
    }

    void startFailed(std::exception_ptr error) {
        const std::lock_guard lock(list_->mutex);
        resume(std::move(error));
    }

    void cancel() {
        std::unique_lock lock(list_->mutex);
        isCancelled_ = true;
        const SessionPointer session = session_;
        lock.unlock();
        if (session) {
            FFmpegKit::cancel(session->getSessionId());
        }
    }

    /// Drops the caller, as long as its context can still take it.
    void abandon() {
        std::unique_lock lock(list_->mutex);
        const std::unique_ptr<Caller> dropped = std::move(caller_);
        lock.unlock();
        cancel();
    }

  private:
    void resumeIfDone() {
        if (session_ && hasEnded_) {
            resume(nullptr);
        }
    }

    // Under the lock, and so are the end of the caller's work guard and of what else touches the context.
    void resume(std::exception_ptr error) {
        if (const auto caller = std::move(caller_)) {
            caller->resume(std::move(error), session_);
            list_->waits.erase(shared_from_this());
        }
    }

    const std::shared_ptr<WaitList> list_;
    // The rest is guarded by the list's lock.
    std::unique_ptr<Caller> caller_;
    SessionPointer session_;
    bool hasEnded_ = false;
    bool isCancelled_ = false;
};

/// What an execution context has of the waits that resume on it: they end with it.
class SessionWaits : public asio::execution_context::service {
  public:
    inline static asio::execution_context::id id;

    explicit SessionWaits(asio::execution_context& context) : service(context) {}

    /// Null, and the caller dropped, if the context is already going.
    std::shared_ptr<SessionWait> add(std::unique_ptr<Caller> caller) {
        const std::lock_guard lock(list_->mutex);
        if (!list_->isOpen) {
            return nullptr;
        }
        return *list_->waits.insert(std::make_shared<SessionWait>(list_, std::move(caller))).first;
    }

  private:
    void shutdown() override {
        std::set<std::shared_ptr<SessionWait>> waits;
        {
            const std::lock_guard lock(list_->mutex);
            list_->isOpen = false;
            waits.swap(list_->waits);
        }
        for (const auto& wait : waits) {
            wait->abandon();
        }
    }

    const std::shared_ptr<WaitList> list_ = std::make_shared<WaitList>();
};

template <typename Handler>
void startWait(Handler handler, const StartSession& start) {
    auto slot = asio::get_associated_cancellation_slot(handler);
    asio::execution_context& context =
        asio::query(asio::get_associated_executor(handler), asio::execution::context);
    const auto wait =
        asio::use_service<SessionWaits>(context).add(std::make_unique<CallerOf<Handler>>(std::move(handler)));
    if (!wait) {
        return;
    }
    if (slot.is_connected()) {
        slot.assign([weak = std::weak_ptr(wait)](asio::cancellation_type) {
            if (const auto waiting = weak.lock()) {
                waiting->cancel();
            }
        });
    }
    try {
        wait->sessionStarted(start([wait](const SessionPointer&) { wait->sessionEnded(); }));
    } catch (...) {
        wait->startFailed(std::current_exception());
    }
}

Task<SessionPointer> suspendUntilEnded(StartSession start) {
    return asio::async_initiate<const asio::use_awaitable_t<>, void(std::exception_ptr, SessionPointer)>(
        [](auto handler, const StartSession& begin) { startWait(std::move(handler), begin); },
        asio::use_awaitable, std::move(start));
}

} // namespace

Task<SessionPointer> untilEnded(StartSession start) {
    throwIfCancelled(co_await asio::this_coro::cancellation_state);
    co_return co_await suspendUntilEnded(std::move(start));
}

} // namespace corvanta
