#pragma once

#include <platform/Task.hpp>

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace corvanta {

using EncoderNames = std::set<std::string, std::less<>>;

/// ffmpeg's names of the encoders that the ffmpeg at hand was built with, which tells nothing of devices.
/// Asks the program once in this process, and waits in line with probes, not with encodes. Safe from any
/// thread. Throws PlatformError if it can't be asked.
Task<std::shared_ptr<const EncoderNames>> encodersOfFFmpeg();

} // namespace corvanta
