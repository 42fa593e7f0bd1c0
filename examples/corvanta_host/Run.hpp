#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

/// Runs `task` to its end. The first Ctrl-C or termination signal cancels it, and throws `Cancelled` once it
/// has ended so; the second one kills the program as usual.
void runInterruptible(corvanta::Task<> task);

/// As above, and gives the task's result.
template <typename T>
requires(!std::is_void_v<T>) T runInterruptible(corvanta::Task<T> task) {
    std::optional<T> result;
    runInterruptible(corvanta::keepResult(std::move(task), &result));
    return std::move(*result);
}

/// Keeps what `begin` gives until the first Ctrl-C, which counts from before it begins.
void keepUntilInterrupt(const std::function<corvanta::Subscription()>& begin);
