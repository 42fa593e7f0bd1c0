#pragma once

#include <platform/AffineTransform.hpp>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <list>
#include <mutex>
#include <optional>
#include <set>
#include <stop_token>
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

/// What a probe told of a file.
struct ProbeAnswer {
    /// As ffprobe writes it.
    std::string text;
    /// That of the first video track, if there is one.
    std::optional<AffineTransform> displayTransform;
};

/// What probing files told, for as long as they stay the same: joining and merging ask about each file more
/// than once. Safe from any thread.
class ProbeMemory {
  public:
    /// The oldest answers go when the texts of all together pass `mostBytes`.
    explicit ProbeMemory(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    static ProbeMemory& shared();

    std::optional<ProbeAnswer> find(const std::string& file, const FileState& state);
    /// What any probe of the same bytes, by whatever name, has seen.
    std::optional<AffineTransform> findDisplayTransform(const FileState& state);
    void keep(std::string file, const FileState& state, ProbeAnswer answer);

    /// The right to read a file, which one thread has at a time: the others wait, as long as `stop` allows,
    /// to find what that one has learnt.
    class Turn {
      public:
        Turn(ProbeMemory& memory, std::string file, const std::stop_token& stop);
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn();

      private:
        ProbeMemory& memory_;
        const std::string file_;
    };

  private:
    struct Entry {
        std::string file;
        FileState state;
        ProbeAnswer answer;
    };

    std::mutex mutex_;
    const std::size_t mostBytes_;
    std::size_t bytes_ = 0;
    std::list<Entry> entries_;
    std::multiset<std::string> beingRead_;
    std::condition_variable_any hasBeenRead_;
};

} // namespace corvanta
