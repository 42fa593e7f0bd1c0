#pragma once

#include <platform/Task.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/cancellation_state.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
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

/// Awaits `task` on that thread, and resumes where it was awaited. What comes through `slot` cancels the
/// task.
///
/// A cancel may reach the worker when the task has ended and whoever asked for it has gone: until then it
/// holds what it needs, which Asio's own way from one executor to another (of Boost 1.81) doesn't.
template <typename T>
Task<T> onEditorWorker(Task<T> task, boost::asio::cancellation_slot slot) {
    const auto cancel = std::make_shared<boost::asio::cancellation_signal>();
    if (slot.is_connected()) {
        slot.assign([cancel](boost::asio::cancellation_type type) {
            boost::asio::post(editorWorker(), [cancel, type] {
                cancel->emit(type);
                // Behind what that may have queued.
                boost::asio::post(editorWorker(), [cancel] {});
            });
        });
    }
    co_return co_await boost::asio::co_spawn(
        editorWorker(), std::move(task),
        boost::asio::bind_cancellation_slot(cancel->slot(), boost::asio::use_awaitable));
}

/// The same; cancelling whoever awaits it cancels the task.
template <typename T>
Task<T> onEditorWorker(Task<T> task) {
    const boost::asio::cancellation_state state = co_await boost::asio::this_coro::cancellation_state;
    co_return co_await onEditorWorker(std::move(task), state.slot());
}

} // namespace corvanta
