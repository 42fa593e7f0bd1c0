#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <boost/asio/cancellation_signal.hpp>

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

inline void cancelSessions() { corvanta::FFmpegKit::cancel(); }

/// Runs `task` to its end. The first Ctrl-C calls `onInterrupt`, which asks for the end; the second one kills
/// the program as usual. A signal on `stop` ends the task at the next thing that it waits for.
void runInterruptible(corvanta::Task<> task, std::function<void()> onInterrupt = cancelSessions,
                      boost::asio::cancellation_slot stop = {});

/// As above, and gives the task's result.
template <typename T>
requires(!std::is_void_v<T>) T
    runInterruptible(corvanta::Task<T> task, std::function<void()> onInterrupt = cancelSessions,
                     boost::asio::cancellation_slot stop = {}) {
    std::optional<T> result;
    runInterruptible(corvanta::keepResult(std::move(task), &result), std::move(onInterrupt), stop);
    return std::move(*result);
}

/// Waits for the first Ctrl-C.
void waitForInterrupt();
