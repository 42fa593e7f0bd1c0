#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>

#include <CorvantaSdkVideo/Editor/QtExecutor.hpp>

#include <exception>
#include <memory>

namespace corvanta {

void startOnQtThread(Task<> task) {
    boost::asio::co_spawn(QtExecutor(), std::move(task), [](const std::exception_ptr&) {});
}

boost::asio::thread_pool& editorWorker() {
    // Never deleted: runs that the process doesn't wait for still end on it.
    static boost::asio::thread_pool* const shared = std::make_unique<boost::asio::thread_pool>(1).release();
    return *shared;
}

} // namespace corvanta
