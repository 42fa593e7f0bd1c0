#pragma once

#include <string>

namespace TALVO::UTILS {

/// Path of a source file below src/, without its extension: how assertions and exceptions name a place.
std::string sourceStem(char const* file);

[[noreturn]] void assertionFailed(char const* function, char const* file, int line,
                                  char const* text) noexcept;

} // namespace TALVO::UTILS

/// A broken invariant ends the process in every build: a wrong size that reached a kernel would
/// corrupt memory. The text is given apart, since it is part of the interface and the formatter
/// would change an expression.
#define TALVO_ASSERT(condition, text)                                                                        \
    do {                                                                                                     \
        if (!(condition)) [[unlikely]]                                                                       \
            ::TALVO::UTILS::assertionFailed(__func__, __FILE__, __LINE__, text);                             \
    } while (false)
