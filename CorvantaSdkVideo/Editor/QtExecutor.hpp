#pragma once

#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace corvanta {

/// An Asio executor that runs what it is given on the Qt application's thread, by its event loop, in order
/// and never at once. Needs a QCoreApplication at its first use. Safe from any thread. What is still queued
/// when the event loop has ended never runs.
class QtExecutor {
  public:
    template <typename Function>
    void execute(Function&& function) const {
        // The event holds a copyable function; handlers can only be moved.
        auto shared = std::make_shared<std::decay_t<Function>>(std::forward<Function>(function));
        post([shared] { std::move (*shared)(); });
    }

    boost::asio::execution_context& query(boost::asio::execution::context_t) const noexcept;
    static constexpr auto query(boost::asio::execution::blocking_t) noexcept {
        return boost::asio::execution::blocking.never;
    }

    friend bool operator==(QtExecutor, QtExecutor) noexcept { return true; }
    friend bool operator!=(QtExecutor, QtExecutor) noexcept { return false; }

  private:
    static void post(std::function<void()> function);
};

} // namespace corvanta
