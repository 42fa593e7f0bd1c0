#include <platform/FileBookmark.hpp>

#include <platform/Directories.hpp>
#include <platform/UniqueFd.hpp>

#include <array>
#include <cstring>
#include <ctime>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvanta {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view formatMark = "CFB1";

// Longer than a clock tick of any kernel, and than the granularity of the file systems that round to 10 ms.
constexpr std::int64_t settlingTime = 20'000'000;

// Stored as it lies in memory: bookmarks don't leave the machine. No padding, so equal files give equal
// bytes.
struct Identity {
    std::uint64_t device;
    std::uint64_t inode;
    std::int64_t birthSeconds;
    std::int64_t birthNanoseconds;

    friend bool operator==(const Identity&, const Identity&) = default;
};
static_assert(std::has_unique_object_representations_v<Identity>);

struct Bookmark {
    Identity identity;
    // Type and bytes of the kernel's file handle; empty if birth time alone tells files apart.
    std::string handle;
    std::string path;
};

UniqueFd openPath(const std::string& path) { return UniqueFd(open(path.c_str(), O_PATH | O_CLOEXEC)); }

std::optional<Identity> identify(int folder, const char* path, int flags) {
    struct statx status {};
    constexpr unsigned wanted = STATX_INO | STATX_BTIME;
    if (statx(folder, path, flags, wanted, &status) != 0 || (status.stx_mask & wanted) != wanted) {
        return std::nullopt;
    }
    return Identity{std::uint64_t{status.stx_dev_major} << 32U | status.stx_dev_minor, status.stx_ino,
                    status.stx_btime.tv_sec, status.stx_btime.tv_nsec};
}

std::string fileHandle(const UniqueFd& file) {
    alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> room{};
    auto* handle = reinterpret_cast<file_handle*>(room.data());
    handle->handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    if (name_to_handle_at(file.get(), "", handle, &mount, AT_EMPTY_PATH) != 0) {
        return {};
    }
    std::string bytes(sizeof(handle->handle_type) + handle->handle_bytes, '\0');
    std::memcpy(bytes.data(), &handle->handle_type, sizeof(handle->handle_type));
    std::memcpy(bytes.data() + sizeof(handle->handle_type), handle->f_handle, handle->handle_bytes);
    return bytes;
}

std::int64_t age(const Identity& identity, const timespec& now) {
    return (now.tv_sec - identity.birthSeconds) * 1'000'000'000 + now.tv_nsec - identity.birthNanoseconds;
}

// `now` must have been read before the file was seen: then any later file is born after `now`.
bool isSettled(const Identity& identity, const timespec& now) { return age(identity, now) > settlingTime; }

timespec clockNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

// The file must be held open meanwhile, so that its inode number can't be reused.
bool waitUntilSettled(const Identity& identity) {
    for (int attempt = 0; attempt < 4; ++attempt) {
        const timespec now = clockNow();
        if (isSettled(identity, now)) {
            return true;
        }
        const timespec pause{0, settlingTime + 1'000'000};
        nanosleep(&pause, nullptr);
    }
    return false;
}

std::string write(const Bookmark& bookmark) {
    std::string bytes(formatMark);
    bytes.append(reinterpret_cast<const char*>(&bookmark.identity), sizeof(Identity));
    bytes += static_cast<char>(bookmark.handle.size());
    bytes += bookmark.handle;
    bytes += bookmark.path;
    return bytes;
}

std::optional<Bookmark> read(std::string_view bytes) {
    constexpr std::size_t fixedPart = formatMark.size() + sizeof(Identity) + 1;
    if (bytes.size() < fixedPart || !bytes.starts_with(formatMark)) {
        return std::nullopt;
    }
    Bookmark bookmark{};
    std::memcpy(&bookmark.identity, bytes.data() + formatMark.size(), sizeof(Identity));
    const auto handleSize = static_cast<unsigned char>(bytes[fixedPart - 1]);
    const std::string_view rest = bytes.substr(fixedPart);
    if (rest.size() < handleSize) {
        return std::nullopt;
    }
    bookmark.handle = rest.substr(0, handleSize);
    bookmark.path = rest.substr(handleSize);
    if (!bookmark.path.starts_with('/') || bookmark.path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return bookmark;
}

bool isAt(const std::string& path, const Bookmark& bookmark) {
    if (bookmark.handle.empty()) {
        return identify(AT_FDCWD, path.c_str(), 0) == bookmark.identity;
    }
    const UniqueFd file = openPath(path);
    return file.get() >= 0 && identify(file.get(), "", AT_EMPTY_PATH) == bookmark.identity &&
           fileHandle(file) == bookmark.handle;
}

} // namespace

std::optional<std::string> makeFileBookmark(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    std::error_code failed;
    const std::string absolute = path.starts_with('/') ? path : fs::absolute(path, failed).string();
    if (failed) {
        return std::nullopt;
    }
    const timespec now = clockNow();
    const UniqueFd file = openPath(absolute);
    const auto identity =
        file.get() >= 0 ? identify(file.get(), "", AT_EMPTY_PATH) : std::optional<Identity>();
    if (!identity) {
        return std::nullopt;
    }
    std::string handle;
    if (!isSettled(*identity, now)) {
        handle = fileHandle(file);
        if (handle.empty() && !waitUntilSettled(*identity)) {
            return std::nullopt;
        }
    }
    return write({*identity, std::move(handle), absolute});
}

std::optional<std::string> FileBookmarkResolver::resolve(std::string_view bytes) {
    const auto bookmark = read(bytes);
    if (!bookmark) {
        return std::nullopt;
    }
    if (isAt(bookmark->path, *bookmark)) {
        return bookmark->path;
    }
    if (moduleFolders_.empty()) {
        moduleFolders_ = {Directories::documents().path() + '/', Directories::caches().path() + '/',
                          Directories::store().path() + '/'};
    }
    const auto findIn = [&](const std::string& folder) -> std::optional<std::string> {
        for (std::string& path : namesIn(folder).pathsOf(bookmark->identity.inode)) {
            if (isAt(path, *bookmark)) {
                return std::move(path);
            }
        }
        return std::nullopt;
    };
    auto found = findIn(bookmark->path.substr(0, bookmark->path.rfind('/') + 1));
    for (auto folder = moduleFolders_.begin(); !found && folder != moduleFolders_.end(); ++folder) {
        found = findIn(*folder);
    }
    return found;
}

void FileBookmarkResolver::beginPass() {
    std::size_t entries = 0;
    std::erase_if(folders_, [&entries](auto& known) {
        entries += known.second.names.size();
        return entries > FolderNames::entryLimit;
    });
    for (auto& [folder, known] : folders_) {
        known.isLookedAt = false;
    }
    moduleFolders_.clear();
    timeLeft_ = searchTime;
}

const FolderNames& FileBookmarkResolver::namesIn(const std::string& folder) {
    const auto known = folders_.find(folder);
    if (known != folders_.end() && (known->second.isLookedAt || known->second.names.isCurrent())) {
        known->second.isLookedAt = true;
        return known->second.names;
    }
    const auto start = FolderNames::Clock::now();
    const auto read = folders_.insert_or_assign(folder, Known{FolderNames(folder, start + timeLeft_), true});
    timeLeft_ -= FolderNames::Clock::now() - start;
    return read.first->second.names;
}

} // namespace corvanta
