#include <platform/Task.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_future.hpp>

namespace corvanta {

namespace asio = boost::asio;

void runBlocking(Task<> task, std::stop_token stop) {
    asio::cancellation_signal cancellation;
    asio::io_context context(1);
    auto ended = asio::co_spawn(context, std::move(task),
                                asio::bind_cancellation_slot(cancellation.slot(), asio::use_future));
    const std::stop_callback cancel(std::move(stop), [&] {
        asio::post(context, [&cancellation] { cancellation.emit(asio::cancellation_type::terminal); });
    });
    context.run();
    ended.get();
}

} // namespace corvanta
