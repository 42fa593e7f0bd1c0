#pragma once

#include <platform/Task.hpp>
#include <platform/URL.hpp>

namespace corvanta {

/// Seconds, as `AssetReader` tells them, read off the caller's thread: a file can be made to be read for
/// long, and whoever waits for it can be cancelled. Throws as `AssetReader` does.
Task<double> assetDuration(URL url);

} // namespace corvanta
