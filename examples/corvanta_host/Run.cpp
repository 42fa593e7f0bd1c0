#include "Run.hpp"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/use_future.hpp>

#include <csignal>

namespace asio = boost::asio;

void runInterruptible(corvanta::Task<> task, std::function<void()> onInterrupt,
                      asio::cancellation_slot stop) {
    asio::io_context context(1);
    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&](const boost::system::error_code& error, int) {
        if (!error) {
            signals.clear();
            onInterrupt();
        }
    });
    auto whole = [](corvanta::Task<> inner, asio::signal_set& waiting) -> corvanta::Task<> {
        struct StopWaiting {
            asio::signal_set& signals;
            ~StopWaiting() { signals.cancel(); }
        } const stopWaiting{waiting};
        co_await std::move(inner);
    };
    auto ended = asio::co_spawn(context, whole(std::move(task), signals),
                                asio::bind_cancellation_slot(stop, asio::use_future));
    context.run();
    ended.get();
}

void waitForInterrupt() {
    asio::io_context context(1);
    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([](const boost::system::error_code&, int) {});
    context.run();
}
