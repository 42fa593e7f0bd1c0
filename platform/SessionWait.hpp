#pragma once

#include <platform/FFmpegKit.hpp>
#include <platform/Task.hpp>

#include <functional>
#include <memory>

namespace corvanta {

/// Starts a session that calls what it is given at its end.
using StartSession = std::function<std::shared_ptr<Session>(CompleteCallback)>;

/// Suspends the caller until the session that `start` gives has ended, and resumes it on its own executor.
/// Throws what `start` throws, and Asio's `operation_aborted` without starting for a caller that has been
/// cancelled.
///
/// A caller that is cancelled while it waits has its session stopped, and waits for the end of that. One
/// whose execution context is destroyed, or shut down, has its session stopped as well, and is dropped with
/// the context.
Task<std::shared_ptr<Session>> untilEnded(StartSession start);

} // namespace corvanta
