#include <platform/Bundle.hpp>

#include <platform/FileManager.hpp>

#include <cstdlib>
#include <filesystem>
#include <utility>
#include <vector>

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

// In the order of search.
std::vector<fs::path> resourceDirectories() {
    if (const char* chosen = std::getenv("CORVANTA_RESOURCES"); chosen != nullptr && *chosen != '\0') {
        return {chosen};
    }
    std::vector<fs::path> directories{CORVANTA_SOURCE_RESOURCES};
    if (fs::path installed = installedResources(); !installed.empty()) {
        directories.insert(directories.begin(), std::move(installed));
    }
    return directories;
}

} // namespace

std::optional<std::string> pathForResource(const std::string& name, const std::string& type) {
    const std::string file = type.empty() ? name : name + "." + type;
    for (const fs::path& directory : resourceDirectories()) {
        if (const fs::path path = directory / file; FileManager::fileExists(path)) {
            return path.string();
        }
    }
    return std::nullopt;
}

std::string resourceDirectory() { return resourceDirectories().front().string(); }

} // namespace corvanta::Bundle
