#include "Run.hpp"

#include "Failures.hpp"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/use_future.hpp>

namespace asio = boost::asio;

namespace {

corvanta::Task<> whole(corvanta::Task<> task, asio::signal_set& waiting) {
    struct StopWaiting {
        asio::signal_set& signals;
        ~StopWaiting() { signals.cancel(); }
    } const stopWaiting{waiting};
    co_await std::move(task);
}

} // namespace

void runInterruptible(corvanta::Task<> task) {
    asio::io_context context(1);
    asio::signal_set signals(context, SIGINT, SIGTERM);
    asio::cancellation_signal stop;
    int interrupted = 0;
    signals.async_wait([&](const boost::system::error_code& error, int signal) {
        if (!error) {
            interrupted = signal;
            signals.clear();
            stop.emit(asio::cancellation_type::terminal);
        }
    });
    auto ended = asio::co_spawn(context, whole(std::move(task), signals),
                                asio::bind_cancellation_slot(stop.slot(), asio::use_future));
    context.run();
    try {
        ended.get();
    } catch (const std::exception&) {
        if (interrupted != 0) {
            throw Cancelled(interrupted);
        }
        throw;
    }
}

void keepUntilInterrupt(const std::function<corvanta::Subscription()>& begin) {
    asio::io_context context(1);
    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([](const boost::system::error_code&, int) {});
    const corvanta::Subscription kept = begin();
    context.run();
}
