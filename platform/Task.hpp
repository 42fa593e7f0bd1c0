#pragma once

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>

namespace corvanta {

/// An asynchronous operation: a coroutine that starts when it is awaited and runs on the executor of whoever
/// awaits it. A host that uses Asio awaits it or `co_spawn`s it with any completion token. Asio's
/// cancellation of the coroutine, through the token's cancellation slot or by `||`, stops what the operation
/// runs.
template <typename T = void>
using Task = boost::asio::awaitable<T>;

/// Runs `task` on the calling thread until it ends; throws its error.
/// For hosts without an event loop of their own. Don't call it on a thread that others wait for. A stop asked
/// of `stop`, from any thread and at any time, cancels the task.
void runBlocking(Task<> task, std::stop_token stop = {});

/// Awaits `task` and keeps its result in `result`, which must outlive the wait.
template <typename T>
Task<> keepResult(Task<T> task, std::optional<T>* result) {
    result->emplace(co_await std::move(task));
}

/// As above, and gives the task's result.
template <typename T>
requires(!std::is_void_v<T>) T runBlocking(Task<T> task, std::stop_token stop = {}) {
    std::optional<T> result;
    runBlocking(keepResult(std::move(task), &result), std::move(stop));
    return std::move(*result);
}

} // namespace corvanta
