#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>

namespace corvanta {

bool isFileName(std::string_view path) {
    return !path.empty() && path.front() != '-' && path.substr(0, path.find('/')).find(':') == path.npos;
}

bool isWritableQuoted(std::string_view path) { return isFileName(path) && isQuotable(path); }

bool isPlainImageName(std::string_view path) {
    for (std::size_t percent = path.find('%'); percent != path.npos; percent = path.find('%', percent + 1)) {
        const std::size_t conversion = path.find_first_not_of("0123456789", percent + 1);
        if (conversion != path.npos && path[conversion] == 'd') {
            return false;
        }
    }
    return path.size() < 1024;
}

} // namespace corvanta
