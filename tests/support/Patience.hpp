#pragma once

#include <chrono>

namespace corvanta::test {

/// How long tests wait for what is to come. It only passes when a test fails, so that it is far more than the
/// slowest machine takes.
constexpr std::chrono::milliseconds patience = std::chrono::minutes(10);
constexpr int patienceInMilliseconds = static_cast<int>(patience.count());

} // namespace corvanta::test
