#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <mutex>
#include <optional>
#include <string>

#include <sys/types.h>

namespace corvanta {

/// By what two readings of one path are known to have been of the same bytes.
struct FileState {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::chrono::nanoseconds written{};
    std::chrono::nanoseconds changed{};

    bool operator==(const FileState&) const = default;
};

/// Nothing for what is no regular file, and for one that was written within the last seconds: its next change
/// could bear the same time.
std::optional<FileState> settledState(const std::string& path);

/// What probing files told, for as long as they stay the same: joining and merging ask about each file more
/// than once. Safe from any thread.
class ProbeMemory {
  public:
    /// The oldest answers go when all together pass `mostBytes`.
    explicit ProbeMemory(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    static ProbeMemory& shared();

    std::optional<std::string> find(const std::string& file, const FileState& state);
    void keep(std::string file, const FileState& state, std::string answer);

  private:
    struct Answer {
        std::string file;
        FileState state;
        std::string text;
    };

    std::mutex mutex_;
    const std::size_t mostBytes_;
    std::size_t bytes_ = 0;
    std::list<Answer> answers_;
};

} // namespace corvanta
