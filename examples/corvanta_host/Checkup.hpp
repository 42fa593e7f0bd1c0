#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One thing that the module needs, or can use, on this machine.
struct Finding {
    enum class State { ok, limited, missing };

    std::string name;
    State state = State::ok;
    /// For people.
    std::string told;
    std::optional<std::string> path = {};
    std::optional<std::uintmax_t> freeBytes = {};
};

/// Looks at ffmpeg and what it was built with, the encoders in hardware, the folders, the store and the noise
/// model, and tries what can't be seen otherwise. Takes a few seconds; leaves nothing behind.
std::vector<Finding> checkup();
