#include "DataFolder.hpp"

#include "Failures.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::optional<std::string>& foundObstacle() {
    static std::optional<std::string> found;
    return found;
}

std::optional<std::string> reasonAgainst(const fs::path& folder) {
    const fs::path store = folder / "video-store.sqlite";
    errno = 0;
    // A full disk is no reason to do without the requests that are there.
    if (fs::exists(store)) {
        const bool canWrite = access(folder.c_str(), W_OK) == 0 && access(store.c_str(), W_OK) == 0;
        return canWrite ? std::nullopt : std::optional(std::strerror(errno));
    }
    // As much as a new store takes, and some more.
    constexpr std::size_t bytes = 64UL * 1024;
    const fs::path probe = folder / fmt::format(".corvanta_host-{}", getpid());
    std::ofstream file(probe, std::ios::binary);
    file << std::string(bytes, '\0') << std::flush;
    const bool isWritten = file.good();
    const int error = errno;
    std::error_code absent;
    fs::remove(probe, absent);
    return isWritten ? std::nullopt : std::optional(std::strerror(error));
}

} // namespace

DataFolder::DataFolder() {
    const auto file = corvanta::CorvantaSdkVideoFileDescriptor::files("x").url("mp4");
    const fs::path folder = fs::path(file->path()).parent_path().parent_path();
    const auto reason = reasonAgainst(folder);
    if (!reason) {
        return;
    }
    foundObstacle() = folder.string() + " can't be written to: " + *reason;
    std::error_code absent;
    const fs::path base = fs::temp_directory_path(absent);
    std::string name = ((absent ? fs::path("/tmp") : base) / "corvanta_host-XXXXXX").string();
    if (mkdtemp(name.data()) != nullptr) {
        temporary_ = name;
        setenv("XDG_DATA_HOME", name.c_str(), 1);
    }
}

DataFolder::~DataFolder() {
    if (!temporary_.empty()) {
        std::error_code absent;
        fs::remove_all(temporary_, absent);
    }
}

const std::optional<std::string>& DataFolder::obstacle() { return foundObstacle(); }

void DataFolder::requireLasting() {
    if (obstacle()) {
        throw Refusal("storeUnavailable", *obstacle() + "; no requests are kept there");
    }
}
