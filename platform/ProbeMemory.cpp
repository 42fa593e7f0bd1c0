#include <platform/ProbeMemory.hpp>

#include <platform/NeverDestroyed.hpp>

#include <algorithm>
#include <ctime>
#include <utility>

#include <sys/stat.h>

namespace corvanta {

namespace {

// Coarser than any file system's clock.
constexpr std::chrono::seconds settlingTime{3};

std::chrono::nanoseconds since1970(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

std::optional<FileState> settledState(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const FileState state{status.st_dev, status.st_ino, status.st_size, since1970(status.st_mtim),
                          since1970(status.st_ctim)};
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::max(state.written, state.changed) + settlingTime < now ? std::optional(state) : std::nullopt;
}

ProbeMemory& ProbeMemory::shared() {
    constexpr std::size_t mostBytes = 4 << 20;
    static NeverDestroyed<ProbeMemory> memory(mostBytes);
    return *memory;
}

std::optional<std::string> ProbeMemory::find(const std::string& file, const FileState& state) {
    const std::lock_guard lock(mutex_);
    const auto known = std::ranges::find(answers_, file, &Answer::file);
    return known != answers_.end() && known->state == state ? std::optional(known->text) : std::nullopt;
}

void ProbeMemory::keep(std::string file, const FileState& state, std::string answer) {
    const std::lock_guard lock(mutex_);
    const auto forget = [this](std::list<Answer>::iterator old) {
        bytes_ -= old->text.size();
        answers_.erase(old);
    };
    if (const auto known = std::ranges::find(answers_, file, &Answer::file); known != answers_.end()) {
        forget(known);
    }
    bytes_ += answer.size();
    answers_.push_back({std::move(file), state, std::move(answer)});
    while (bytes_ > mostBytes_) {
        forget(answers_.begin());
    }
}

} // namespace corvanta
