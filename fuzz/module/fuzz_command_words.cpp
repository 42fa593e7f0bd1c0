// The input is a command's text, and a word between quotes.

#include <platform/CommandWords.hpp>

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    std::string text(data, size);
    corvanta::splitCommand(text);

    std::erase(text, '"');
    if (corvanta::splitCommand("-i \"" + text + "\" out") != std::vector<std::string>{"-i", text, "out"}) {
        std::abort();
    }
    return 0;
}
