#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/use_future.hpp>

#include <csignal>
#include <functional>
#include <utility>

/// Runs `task` to its end. The first Ctrl-C calls `onInterrupt`, which asks for the end; the second one kills
/// the program as usual.
template <typename T>
T runInterruptible(
    corvanta::Task<T> task, std::function<void()> onInterrupt = [] { corvanta::FFmpegKit::cancel(); }) {
    namespace asio = boost::asio;
    asio::io_context context(1);
    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&](const boost::system::error_code& error, int) {
        if (!error) {
            signals.clear();
            onInterrupt();
        }
    });
    auto whole = [](corvanta::Task<T> inner, asio::signal_set& waiting) -> corvanta::Task<T> {
        struct StopWaiting {
            asio::signal_set& signals;
            ~StopWaiting() { signals.cancel(); }
        } const stopWaiting{waiting};
        co_return co_await std::move(inner);
    };
    auto result = asio::co_spawn(context, whole(std::move(task), signals), asio::use_future);
    context.run();
    return result.get();
}
