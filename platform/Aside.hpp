#pragma once

#include <platform/Task.hpp>

#include <functional>
#include <stop_token>

namespace corvanta {

/// Runs `work`, which blocks, on a thread of the module, and throws what it throws. A caller that is
/// cancelled, or whose execution context goes, asks it to stop; the work may still run when the caller's
/// frame is gone, so it owns what it uses.
Task<> runAside(std::function<void(std::stop_token)> work);

} // namespace corvanta
