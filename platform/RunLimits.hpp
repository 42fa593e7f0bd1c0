#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace corvanta {

/// What a run of ffmpeg or ffprobe may take, against files that are made to make it take all. Absent: as much
/// as the host itself may.
struct RunLimits {
    /// Bytes of memory, counted as address space, which is two to three times what is really used; the stacks
    /// of the threads that decode the inputs come on top. A run that asks for more fails with its own
    /// message.
    std::optional<std::uint64_t> memory = {};
    /// Bytes of each file that is written. Writing more fails with "File too large".
    std::optional<std::uint64_t> fileSize = {};
    /// How long nothing may be added to the output (bytes, frames or time; for ffprobe its text). A position
    /// late in a long file can take minutes to be decoded up to.
    std::optional<std::chrono::milliseconds> stall = {};
};

/// For a host that opens strangers' files: half the machine's memory, but at least 4 GiB; 128 GiB a file; ten
/// minutes.
RunLimits recommendedRunLimits();

/// The limit of address space for a run with so many inputs that may take `memory`.
std::uint64_t addressSpaceFor(std::uint64_t memory, std::size_t inputs);

} // namespace corvanta
