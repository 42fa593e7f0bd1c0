#include "utils/assertion.hpp"

#include <cstdio>
#include <cstdlib>

namespace TALVO::UTILS {

std::string sourceStem(char const* file) {
    std::string stem(file);
    static std::string const root = "noise_library/src/";
    if (auto const at = stem.rfind(root); at != std::string::npos)
        stem.erase(0, at + root.size());
    if (auto const dot = stem.rfind('.'); dot != std::string::npos)
        stem.erase(dot);
    return stem;
}

void assertionFailed(char const* function, char const* file, int line, char const* text) noexcept {
    std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %d.\n", text, function,
                 sourceStem(file).c_str(), line);
    std::abort();
}

} // namespace TALVO::UTILS
