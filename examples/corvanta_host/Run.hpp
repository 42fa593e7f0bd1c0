#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

inline void cancelSessions() { corvanta::FFmpegKit::cancel(); }

/// Runs `task` to its end. The first Ctrl-C calls `onInterrupt`, which asks for the end; the second one kills
/// the program as usual.
void runInterruptible(corvanta::Task<> task, std::function<void()> onInterrupt = cancelSessions);

/// As above, and gives the task's result.
template <typename T>
requires(!std::is_void_v<T>) T
    runInterruptible(corvanta::Task<T> task, std::function<void()> onInterrupt = cancelSessions) {
    std::optional<T> result;
    runInterruptible(corvanta::keepResult(std::move(task), &result), std::move(onInterrupt));
    return std::move(*result);
}

/// Waits for the first Ctrl-C.
void waitForInterrupt();
