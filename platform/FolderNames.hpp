#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvanta {

/// The names in a folder by the inode numbers of what they name, as they were when they were read.
class FolderNames {
  public:
    using Clock = std::chrono::steady_clock;

    /// No more entries than these are read of a folder.
    static constexpr std::size_t entryLimit = 100'000;

    /// Reads until `deadline`, and some hundred entries in any case. A folder that can't be read has no
    /// names.
    FolderNames(std::string folder, Clock::time_point deadline);

    /// The paths that had that inode number.
    std::vector<std::string> pathsOf(std::uint64_t inode) const;

    /// Whether the folder has certainly not changed since it was read.
    bool isCurrent() const;

    std::size_t size() const { return names_.size(); }

  private:
    struct Stamp {
        std::uint64_t device;
        std::uint64_t inode;
        std::int64_t seconds;
        std::int64_t nanoseconds;

        friend bool operator==(const Stamp&, const Stamp&) = default;
    };

    std::optional<Stamp> stamp() const;

    std::string folder_;
    // In the order of the inode numbers, each with the place of its name in the text, which ends with a NUL.
    std::vector<std::pair<std::uint64_t, std::size_t>> names_;
    std::string text_;
    // Absent if the folder changed so lately that its next change could bear the same time.
    std::optional<Stamp> stamp_;
};

} // namespace corvanta
