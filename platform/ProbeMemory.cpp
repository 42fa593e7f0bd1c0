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

std::optional<ProbeAnswer> ProbeMemory::find(const std::string& file, const FileState& state) {
    const std::lock_guard lock(mutex_);
    const auto known = std::ranges::find(entries_, file, &Entry::file);
    return known != entries_.end() && known->state == state ? std::optional(known->answer) : std::nullopt;
}

std::optional<AffineTransform> ProbeMemory::findDisplayTransform(const FileState& state) {
    const std::lock_guard lock(mutex_);
    const auto known = std::ranges::find(entries_, state, &Entry::state);
    return known != entries_.end() ? known->answer.displayTransform : std::nullopt;
}

void ProbeMemory::keep(std::string file, const FileState& state, ProbeAnswer answer) {
    const std::lock_guard lock(mutex_);
    const auto forget = [this](std::list<Entry>::iterator old) {
        bytes_ -= old->answer.text.size();
        entries_.erase(old);
    };
    if (const auto known = std::ranges::find(entries_, file, &Entry::file); known != entries_.end()) {
        forget(known);
    }
    bytes_ += answer.text.size();
    entries_.push_back({std::move(file), state, std::move(answer)});
    while (bytes_ > mostBytes_) {
        forget(entries_.begin());
    }
}

ProbeMemory::Turn::Turn(ProbeMemory& memory, std::string file, const std::stop_token& stop)
    : memory_(memory), file_(std::move(file)) {
    std::unique_lock lock(memory_.mutex_);
    memory_.hasBeenRead_.wait(lock, stop, [this] { return !memory_.beingRead_.contains(file_); });
    memory_.beingRead_.insert(file_);
}

ProbeMemory::Turn::~Turn() {
    {
        const std::lock_guard lock(memory_.mutex_);
        memory_.beingRead_.extract(file_);
    }
    memory_.hasBeenRead_.notify_all();
}

} // namespace corvanta
