#pragma once

#include <boost/asio/cancellation_state.hpp>

#include <exception>

/// Asio's cancellation of one operation, asked for through its cancellation slot, of whatever type.
namespace corvanta {

/// Throws Asio's `operation_aborted` if the awaiting coroutine, whose state is
/// `co_await asio::this_coro::cancellation_state`, has been cancelled.
void throwIfCancelled(const boost::asio::cancellation_state& state);

/// Whether an operation has failed because it was cancelled.
bool isCancellation(const std::exception& error);

} // namespace corvanta
