#include <platform/Aside.hpp>

#include <platform/Cancellation.hpp>
#include <platform/SessionRunner.hpp>
#include <platform/SessionWait.hpp>

#include <boost/asio/this_coro.hpp>

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace corvanta {

namespace asio = boost::asio;

Task<> runAside(std::function<void(std::stop_token)> work) {
    const auto error = std::make_shared<std::exception_ptr>();
    StartSession start = [error, work = std::move(work)](CompleteCallback onComplete) {
        CommandPlan plan;
        plan.answer = [error, work](const std::stop_token& stop) -> std::optional<std::string> {
            try {
                work(stop);
            } catch (...) {
                *error = std::current_exception();
            }
            return "";
        };
        plan.answering = CommandPlan::Answering::lasting;
        plan.onComplete = std::move(onComplete);
        return SessionRunner::shared().run(SessionRunner::Program::none, std::move(plan));
    };
    co_await untilEnded(std::move(start));
    throwIfCancelled(co_await asio::this_coro::cancellation_state);
    if (*error) {
        std::rethrow_exception(*error);
    }
}

} // namespace corvanta
