#include "Output.hpp"

#include "Failures.hpp"
#include "MediaNames.hpp"

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <system_error>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace corvanta;
namespace fs = std::filesystem;

namespace {

fs::path inFolder(const Files& files, const fs::path& name) {
    return isFolder(files.output) ? fs::path(files.output) / name : fs::path(files.output);
}

// Against two runs that write the same file, of which one would lose its output unheard. The name is one of
// the kernel's own that goes with this process, however it ends.
void claim(const std::string& path) {
    static std::map<std::string, int> claims;
    struct stat folder {};
    const fs::path place(path);
    if (stat(place.parent_path().c_str(), &folder) != 0) {
        return;
    }
    const std::string name = fmt::format("corvanta_host-{}-{}-{:x}", folder.st_dev, folder.st_ino,
                                         std::hash<std::string>{}(place.filename().string()));
    if (claims.contains(name)) {
        return;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // A first byte of 0 keeps it out of the file system.
    name.copy(address.sun_path + 1, sizeof(address.sun_path) - 1);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor >= 0 && bind(descriptor, reinterpret_cast<const sockaddr*>(&address), length) != 0 &&
        errno == EADDRINUSE) {
        close(descriptor);
        throw Refusal("outputBusy", path + " is being written by another corvanta_host");
    }
    claims.emplace(name, descriptor);
}

// A place where nothing that is there can be lost.
std::string checked(const fs::path& relative, const Files& files) {
    const fs::path path = fs::absolute(relative).lexically_normal();
    if (!fs::is_directory(path.parent_path())) {
        throw Refusal("noFolder", "there is no folder " + path.parent_path().string());
    }
    for (const std::string& input : files.inputs) {
        std::error_code absent;
        if (fs::equivalent(input, path, absent)) {
            throw Refusal("outputIsInput", path.string() + " is read: it can't be written in the same run");
        }
    }
    requireFree(path.string(), files.overwriting);
    return path.string();
}

// Another extension would be followed by the one that is written.
fs::path withoutExtension(const fs::path& name, const std::string& extension) {
    const std::string given = name.extension().string();
    if (given == '.' + extension) {
        return fs::path(name).replace_extension();
    }
    if (!given.empty() && isKnownExtension(given.substr(1))) {
        throw UsageError("the output is a file of extension " + extension + ": name it " +
                         fs::path(name).replace_extension(extension).string());
    }
    return name;
}

} // namespace

Output outputFor(const Files& files, const std::string& extension) {
    const fs::path stem = isFolder(files.output) ? inFolder(files, fs::path(files.inputs.front()).stem())
                                                 : withoutExtension(files.output, extension);
    const std::string path = checked(stem.string() + '.' + extension, files);
    const std::string location = path.substr(0, path.size() - extension.size() - 1);
    return {CorvantaSdkVideoFileDescriptor::custom(parseablePath(location)), path};
}

std::string outputPath(const Files& files) {
    return checked(inFolder(files, fs::path(files.inputs.front()).filename()), files);
}

void requireFree(const std::string& path, Overwriting overwriting) {
    claim(path);
    std::error_code absent;
    if (!fs::exists(path, absent)) {
        return;
    }
    if (isFolder(path)) {
        throw Refusal("outputExists", path + " is a folder");
    }
    const bool mayGo = overwriting == Overwriting::asked
                           ? Console::confirm(path + " is there already. Write over it?")
                           : overwriting == Overwriting::always;
    if (!mayGo) {
        throw Refusal("outputExists", path + " is there already; --force writes over it");
    }
}

UnfinishedOutput::~UnfinishedOutput() {
    const State now = path_.empty() ? before_ : stateOf(path_);
    if (now && now != before_) {
        std::error_code absent;
        fs::remove(path_, absent);
    }
}

UnfinishedOutput::State UnfinishedOutput::stateOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return {{static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
             static_cast<std::int64_t>(status.st_ctim.tv_sec),
             static_cast<std::int64_t>(status.st_ctim.tv_nsec)}};
}
