#pragma once

#include <optional>
#include <string>

/// Which devices there are that a hardware encoder could use; whether one encodes, only a run tells.
namespace corvanta {

/// NVIDIA's driver, on a machine of its own or as a guest's.
bool hasNvidiaDevice();

/// The path of the first render node; nothing without a GPU's driver.
std::optional<std::string> firstRenderNode();

} // namespace corvanta
