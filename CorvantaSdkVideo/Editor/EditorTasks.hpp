#pragma once

#include <platform/Task.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <functional>
#include <memory>
#include <utility>

namespace corvanta {

/// Starts `task` on the Qt application's thread, from its event loop. An error that it throws ends it
/// quietly.
void startOnQtThread(Task<> task);

/// The same; what it returns cancels the task, on the Qt thread, and does nothing once that has ended.
std::function<void()> startStoppableOnQtThread(Task<> task);

/// The one thread that does for the editor what would block the Qt thread: opening media files, reading
/// pictures.
boost::asio::thread_pool& editorWorker();

/// Awaits `task` on that thread, and resumes where it was awaited.
template <typename T>
Task<T> onEditorWorker(Task<T> task) {
    co_return co_await boost::asio::co_spawn(editorWorker(), std::move(task), boost::asio::use_awaitable);
}

/// The same; `stop` cancels the task.
template <typename T>
Task<T> onEditorWorker(Task<T> task, std::shared_ptr<boost::asio::cancellation_signal> stop) {
    co_return co_await boost::asio::co_spawn(
        editorWorker(), std::move(task),
        boost::asio::bind_cancellation_slot(stop->slot(), boost::asio::use_awaitable));
}

} // namespace corvanta
