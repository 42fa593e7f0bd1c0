#include <platform/VideoDevices.hpp>

#include <filesystem>
#include <system_error>

namespace corvanta {

namespace fs = std::filesystem;

bool hasNvidiaDevice() {
    std::error_code absent;
    return fs::exists("/dev/nvidiactl", absent) || fs::exists("/dev/dxg", absent);
}

std::optional<std::string> firstRenderNode() {
    std::optional<std::string> first;
    std::error_code absent;
    for (const fs::directory_entry& entry : fs::directory_iterator("/dev/dri", absent)) {
        const std::string path = entry.path().string();
        if (entry.path().filename().string().starts_with("renderD") && (!first || path < *first)) {
            first = path;
        }
    }
    return first;
}

} // namespace corvanta
