#include <platform/Bundle.hpp>

#include <platform/FileManager.hpp>

#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>

namespace corvanta::Bundle {

namespace fs = std::filesystem;

namespace {

fs::path installedResources() {
    Dl_info library{};
    if (dladdr(reinterpret_cast<const void*>(&pathForResource), &library) == 0 ||
        library.dli_fname == nullptr) {
        return {};
    }
    std::error_code ignored;
    const fs::path file = fs::canonical(library.dli_fname, ignored);
    // Debian's libraries lie one level deeper, in lib/<multiarch>.
    for (const fs::path& prefix :
         {file.parent_path().parent_path(), file.parent_path().parent_path().parent_path()}) {
        if (fs::path candidate = prefix / "share/corvanta-sdk-video"; fs::is_directory(candidate, ignored)) {
            return candidate;
        }
    }
    return {};
}

} // namespace

std::optional<std::string> pathForResource(const std::string& name, const std::string& type) {
    const std::string directory = resourceDirectory();
    if (directory.empty()) {
        return std::nullopt;
    }
    const fs::path path = fs::path(directory) / (type.empty() ? name : name + "." + type);
    return FileManager::fileExists(path) ? std::optional(path.string()) : std::nullopt;
}

std::string resourceDirectory() {
    if (const char* chosen = std::getenv("CORVANTA_RESOURCES"); chosen != nullptr && *chosen != '\0') {
        std::error_code ignored;
        return fs::absolute(chosen, ignored).string();
    }
    return installedResources().string();
}

} // namespace corvanta::Bundle
