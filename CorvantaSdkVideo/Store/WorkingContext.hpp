#pragma once

#include <platform/Stream.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace corvanta {

/// Identity of a stored row. A store never gives one number to two rows in the life of a process.
using RowKey = std::int64_t;

/// The serial scope in which a store does all its work, and the notices of its commits.
///
/// A lock that its own thread may take again stands for the scope's queue: an observer that is called in the
/// middle of a commit can use the store. Held by `shared_ptr`; subscriptions keep it alive.
class WorkingContext : public std::enable_shared_from_this<WorkingContext> {
  public:
    /// A commit, seen by observers.
    struct Notice {
        /// Committed by another process: it may have changed any row, and none is told.
        bool isForeign = false;
        /// The rows that were there before and have been given new values.
        std::vector<RowKey> updatedRows;
    };

    using Observer = std::function<void(const Notice& notice)>;

    WorkingContext() = default;
    WorkingContext(const WorkingContext&) = delete;
    WorkingContext& operator=(const WorkingContext&) = delete;
    virtual ~WorkingContext() = default;

    /// Runs `action` alone in the scope, on the calling thread.
    template <typename Action>
    decltype(auto) performSync(Action&& action) {
        const std::lock_guard lock(mutex_);
        return std::forward<Action>(action)();
    }

    /// `observer` hears of each commit from now on, within the scope, until the subscription ends. Ending it
    /// waits for a notice that is under way on another thread.
    Subscription observe(Observer observer);

    /// Tells all observers, within the scope, of a commit. Observers that come in the course of it are not
    /// told, those that leave are not called any more. An observer that throws ends the process: the commit
    /// that it hears of can't be taken back.
    void announceCommit(const Notice& notice) noexcept;

  private:
    struct Entry {
        Observer observer;
        bool active = true;
    };

    std::recursive_mutex mutex_;
    std::vector<std::shared_ptr<Entry>> observers_;
};

} // namespace corvanta
