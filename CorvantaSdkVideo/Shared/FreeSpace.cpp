#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>

#include <platform/AssetReader.hpp>
#include <platform/Errors.hpp>
#include <platform/MediaOpening.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <system_error>

#include <sys/stat.h>

namespace corvanta {

namespace {

constexpr std::int64_t megabyte = 1'000'000;

// Of the files' own size: containers are not alike in what they add, and transport streams may hold as much
// stuffing as media.
constexpr double copiedShare = 0.9;
constexpr double copiedShareOfTransport = 0.5;

// The entries in a file's index alone.
constexpr double leastBytesPerSecond = 300;

struct Demand {
    std::string folder;
    std::int64_t bytes = 0;
};

std::string folderOf(const std::string& path) {
    return std::filesystem::absolute(path).parent_path().native();
}

// An older file is written over.
std::int64_t bytesToBeFreed(const std::string& path) {
    constexpr std::int64_t block = 512;
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) ? status.st_blocks * block : 0;
}

bool isPictureAndSoundAlone(const CorvantaSdkVideoInformation& file) {
    if (file.videos.size() > 1 || file.audios.size() > 1) {
        return false;
    }
    try {
        return AssetReader(file.url).trackCount() == file.videos.size() + file.audios.size();
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

void requireFreeSpace(const std::vector<NeededSpace>& needed, CorvantaSdkVideoError::Case error) {
    std::map<dev_t, Demand> demands;
    for (const NeededSpace& space : needed) {
        struct stat status {};
        const std::string folder = folderOf(space.path);
        if (space.bytes > 0 && stat(folder.c_str(), &status) == 0) {
            Demand& demand = demands[status.st_dev];
            demand.folder = folder;
            demand.bytes += std::max<std::int64_t>(0, space.bytes - bytesToBeFreed(space.path));
        }
    }
    for (const auto& [device, demand] : demands) {
        std::error_code failed;
        const auto space = std::filesystem::space(demand.folder, failed);
        if (!failed && demand.bytes > 0 && space.available < static_cast<std::uintmax_t>(demand.bytes)) {
            throw CorvantaSdkVideoError(
                error, demand.folder + ": no space: needs " +
                           std::to_string((demand.bytes + megabyte - 1) / megabyte) + " MB, and " +
                           std::to_string(space.available / static_cast<std::uintmax_t>(megabyte)) +
                           " MB are free");
        }
    }
}

void requireFreeSpace(const std::string& path, std::int64_t bytes, CorvantaSdkVideoError::Case error) {
    const std::vector<NeededSpace> needed{{path, bytes}};
    requireFreeSpace(needed, error);
}

void requireSpaceForCopies(const std::string& path, const std::vector<CorvantaSdkVideoInformation>& files,
                           CorvantaSdkVideoError::Case error) {
    double whole = 0;
    double bytes = 0;
    for (const CorvantaSdkVideoInformation& file : files) {
        const double share = file.format == "mpegts" ? copiedShareOfTransport : copiedShare;
        whole += static_cast<double>(file.size);
        bytes += static_cast<double>(file.size) * share;
    }
    std::error_code failed;
    const auto space = std::filesystem::space(folderOf(path), failed);
    constexpr double most = 1e18;
    // The files are opened only where that decides.
    if (failed || whole <= static_cast<double>(space.available) || bytes >= most ||
        !std::ranges::all_of(files, isPictureAndSoundAlone)) {
        return;
    }
    requireFreeSpace(path, std::llround(bytes), error);
}

std::int64_t leastCopiedBytes(const URL& video, const std::vector<CorvantaSdkVideoTimeRange>& ranges) {
    // A picture is decoded so much earlier than it is shown, at most.
    constexpr double longestReordering = 1;
    std::int64_t bytes = 0;
    try {
        const AssetReader reader(video);
        for (const CorvantaSdkVideoTimeRange& range : ranges) {
            bytes += reader.listedPictureBytes(range.start, range.end - longestReordering);
        }
    } catch (const PlatformError&) {
        // The run tells what is wrong with it.
    }
    return bytes;
}

std::int64_t leastEncodedBytes(double seconds) {
    return isPossibleDuration(seconds) ? std::llround(seconds * leastBytesPerSecond) : 0;
}

} // namespace corvanta
