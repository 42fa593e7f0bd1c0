#include <platform/FolderNames.hpp>

#include <algorithm>
#include <ctime>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <sys/stat.h>

namespace corvanta {

namespace {

// Longer than a clock tick of any kernel, and than the granularity of the file systems that round to 10 ms.
constexpr std::int64_t folderSettlingTime = 20'000'000;

// Also what is read of a folder in any case.
constexpr std::size_t entriesBetweenLooksAtTheClock = 512;

struct CloseDirectory {
    void operator()(DIR* stream) const { closedir(stream); }
};

} // namespace

FolderNames::FolderNames(std::string folder, Clock::time_point deadline) : folder_(std::move(folder)) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const auto before = stamp();
    const std::unique_ptr<DIR, CloseDirectory> stream(opendir(folder_.c_str()));
    bool isInTime = true;
    while (const dirent* entry =
               stream && isInTime && names_.size() < entryLimit ? readdir(stream.get()) : nullptr) {
        // A symbolic link has an inode of its own, so what leads to the file by a link is passed over.
        if (const std::string_view name = entry->d_name; name != "." && name != "..") {
            names_.emplace_back(entry->d_ino, text_.size());
            text_.append(name).push_back('\0');
            isInTime = names_.size() % entriesBetweenLooksAtTheClock != 0 || Clock::now() < deadline;
        }
    }
    std::sort(names_.begin(), names_.end());
    const std::int64_t age =
        before ? (now.tv_sec - before->seconds) * 1'000'000'000 + now.tv_nsec - before->nanoseconds : 0;
    if (age > folderSettlingTime) {
        stamp_ = before;
    }
}

std::vector<std::string> FolderNames::pathsOf(std::uint64_t inode) const {
    std::vector<std::string> paths;
    for (auto place = std::lower_bound(names_.begin(), names_.end(), std::pair(inode, std::size_t{0}));
         place != names_.end() && place->first == inode; ++place) {
        paths.push_back(folder_ + &text_[place->second]);
    }
    return paths;
}

bool FolderNames::isCurrent() const { return stamp_ && stamp() == stamp_; }

std::optional<FolderNames::Stamp> FolderNames::stamp() const {
    struct stat status {};
    if (stat(folder_.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return Stamp{status.st_dev, status.st_ino, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

} // namespace corvanta
