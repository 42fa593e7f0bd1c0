#pragma once

#include <platform/UniqueFd.hpp>

#include <cstdint>
#include <string>

namespace corvanta {

/// A small file by which the processes that use something together know of each other: who of them lives, and
/// that one of them has changed it.
///
/// Each object is a peer and holds a lock on one byte of the file, far behind its end, whose place is the
/// peer's mark. The kernel drops the lock when the process ends, in whatever way, so that nothing has to be
/// cleaned up, and no number is taken for another's: marks are drawn from 62 bits. Peers in different
/// containers see each other, as long as they share the file. A child made by `fork` alone keeps its parent's
/// lock. Safe from any thread.
class PeerFile {
  public:
    /// Makes the file if it isn't there. Throws std::system_error if it can't be made or locked.
    explicit PeerFile(std::string path);

    const std::string& path() const { return path_; }

    /// This peer's mark, above 0.
    std::int64_t mark() const { return mark_; }

    /// Whether the peer of a mark lives; this one does. What can't be found out counts as living.
    bool isAlive(std::int64_t mark) const;

    /// Lets every `PeerWatch` of the file hear, this process's own included.
    void tell() const noexcept;

  private:
    std::string path_;
    UniqueFd file_;
    std::int64_t mark_;
};

} // namespace corvanta
