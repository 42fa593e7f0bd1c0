#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>

#include <optional>
#include <type_traits>
#include <utility>

namespace corvanta {

/// An asynchronous operation: a coroutine that starts when it is awaited and runs on the executor of whoever
/// awaits it. A host that uses Asio awaits it or `co_spawn`s it with any completion token.
template <typename T = void>
using Task = boost::asio::awaitable<T>;

/// Runs `task` on the calling thread until it ends; gives its result or throws its error.
/// For hosts without an event loop of their own. Don't call it on a thread that others wait for.
template <typename T>
T runBlocking(Task<T> task) {
    boost::asio::io_context context(1);
    if constexpr (std::is_void_v<T>) {
        auto ended = boost::asio::co_spawn(context, std::move(task), boost::asio::use_future);
        context.run();
        ended.get();
    } else {
        // `co_spawn` wants a result that can be made from nothing.
        auto optional = [](Task<T> inner) -> Task<std::optional<T>> { co_return co_await std::move(inner); };
        auto result = boost::asio::co_spawn(context, optional(std::move(task)), boost::asio::use_future);
        context.run();
        return *result.get();
    }
}

} // namespace corvanta
