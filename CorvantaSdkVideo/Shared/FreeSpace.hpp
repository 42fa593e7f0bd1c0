#pragma once

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>

#include <cstdint>
#include <string>

namespace corvanta {

/// Throws `error` with "no space: needs N MB" if the folder of the file at `path` has less room than `bytes`.
/// A folder that can't be asked passes.
void requireFreeSpace(const std::string& path, std::int64_t bytes, CorvantaSdkVideoError::Case error);

} // namespace corvanta
