#include <platform/Directories.hpp>

#include <cstdlib>
#include <filesystem>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvanta::Directories {

namespace fs = std::filesystem;

namespace {

fs::path homeDirectory() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
        return home;
    }
    const passwd* user = getpwuid(getuid());
    return user != nullptr ? user->pw_dir : "/";
}

fs::path baseDirectory(const char* variable, const char* below) {
    // The XDG rules ask that a relative value be ignored.
    const char* value = std::getenv(variable);
    const fs::path base = value != nullptr && *value == '/' ? fs::path(value) : homeDirectory() / below;
    return base / "corvanta-sdk-video";
}

URL made(const fs::path& directory) {
    for (fs::path part; const auto& name : directory) {
        part /= name;
        mkdir(part.c_str(), 0700);
    }
    return URL::fromFilePath(directory.string());
}

} // namespace

URL documents() { return made(baseDirectory("XDG_DATA_HOME", ".local/share") / "documents"); }

URL caches() { return made(baseDirectory("XDG_CACHE_HOME", ".cache")); }

URL store() { return made(baseDirectory("XDG_DATA_HOME", ".local/share")); }

} // namespace corvanta::Directories
