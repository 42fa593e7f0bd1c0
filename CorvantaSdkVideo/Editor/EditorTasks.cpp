#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>

#include <CorvantaSdkVideo/Editor/QtExecutor.hpp>

#include <exception>
#include <memory>

namespace corvanta {

void startOnQtThread(Task<> task) {
    boost::asio::co_spawn(QtExecutor(), std::move(task), [](const std::exception_ptr&) {});
}

std::function<void()> startStoppableOnQtThread(Task<> task) {
    const auto stop = std::make_shared<boost::asio::cancellation_signal>();
    boost::asio::co_spawn(
        QtExecutor(), std::move(task),
        boost::asio::bind_cancellation_slot(stop->slot(), [stop](const std::exception_ptr&) {}));
    return [stop] { stop->emit(boost::asio::cancellation_type::terminal); };
}

boost::asio::thread_pool& editorWorker() {
    // Never deleted: runs that the process doesn't wait for still end on it.
    static boost::asio::thread_pool* const shared = std::make_unique<boost::asio::thread_pool>(1).release();
    return *shared;
}

} // namespace corvanta
