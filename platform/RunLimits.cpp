#include <platform/RunLimits.hpp>

#include <algorithm>

#include <unistd.h>

namespace corvanta {

RunLimits recommendedRunLimits() {
    constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30U;
    const auto machine = static_cast<std::uint64_t>(std::max(0L, sysconf(_SC_PHYS_PAGES))) *
                         static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    return {.memory = std::max(machine / 2, 4 * gibibyte),
            .fileSize = 128 * gibibyte,
            .stall = std::chrono::minutes(10)};
}

std::uint64_t addressSpaceFor(std::uint64_t memory, std::size_t inputs) {
    // A decoder has a thread for each processor and one more, with 8 MiB of stack and a part of the heap.
    constexpr std::uint64_t threadSpace = std::uint64_t{16} << 20U;
    const auto processors = static_cast<std::uint64_t>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
    std::uint64_t threads = 0;
    std::uint64_t space = 0;
    const bool tooMuch = __builtin_mul_overflow((processors + 1) * threadSpace, inputs, &threads) ||
                         __builtin_add_overflow(memory, threads, &space);
    return tooMuch ? UINT64_MAX : space;
}

} // namespace corvanta
