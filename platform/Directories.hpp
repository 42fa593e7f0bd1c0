#pragma once

#include <platform/URL.hpp>

/// The module's per-user directories, in the places of the XDG base directories. Each is made at its first
/// use with mode 0700; one that can't be made is given all the same, and the use of it fails.
namespace corvanta::Directories {

/// Lasting output: $XDG_DATA_HOME/corvanta-sdk-video/documents
URL documents();

/// Disposable output: $XDG_CACHE_HOME/corvanta-sdk-video
URL caches();

/// Where the request store lies: $XDG_DATA_HOME/corvanta-sdk-video
URL store();

} // namespace corvanta::Directories
