#include <platform/Task.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>

namespace corvanta {

void runBlocking(Task<> task) {
    boost::asio::io_context context(1);
    auto ended = boost::asio::co_spawn(context, std::move(task), boost::asio::use_future);
    context.run();
    ended.get();
}

} // namespace corvanta
