#pragma once

#include <string>

namespace TALVO::UTILS {

using Print = void (*)(char const* line, void* context);

/// Where lines go from now on; nullptr: to standard output, as at first. Safe from any thread.
void setPrint(Print print, void* context);

/// Tells the user of the library something that stops nothing. `line` has no end of its own.
void printLine(std::string const& line);

} // namespace TALVO::UTILS
