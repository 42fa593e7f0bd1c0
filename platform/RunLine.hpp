#pragma once

#include <platform/CommandRun.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>

namespace corvanta {

/// Runs of one program, so many at a time; further ones wait, in the order of their ids. One thread at a
/// time.
class RunLine {
  public:
    explicit RunLine(std::size_t limit) : limit_(limit) {}

    void setLimit(std::size_t limit);
    void enter(std::int64_t id, std::shared_ptr<CommandRun> run);
    /// One that waits needs no turn any more: it starts and ends at once. An unknown id does nothing.
    void cancel(std::int64_t id);
    void cancelAll();
    void leave(std::int64_t id);
    /// Lets a run that could not be started wait until the line advances.
    void putBack(std::int64_t id);
    void advance();

    std::size_t running() const { return running_.size(); }

  private:
    std::size_t limit_;
    std::map<std::int64_t, std::shared_ptr<CommandRun>> waiting_;
    std::map<std::int64_t, std::weak_ptr<CommandRun>> running_;
};

} // namespace corvanta
