#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace noise_fuzz {

/// A folder in memory that goes when the process ends.
std::wstring scratchFolder();

/// Writes a file into it and gives its path.
std::wstring writeScratchFile(char const* name, void const* data, std::size_t size);

/// Turns off what the library prints, which would take most of the time.
void silence();

} // namespace noise_fuzz
