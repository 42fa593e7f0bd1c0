#pragma once

#include <CorvantaSdkVideo/Store/CoreData/PersistentContainer.hpp>
#include <CorvantaSdkVideo/Store/WorkingContext.hpp>
#include <platform/FileBookmark.hpp>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace corvanta {

/// The working context of the persistent store: its changes that are not yet on disk, and its prepared
/// statements. Everything but the constructor is to be called within `performSync`.
class ManagedObjectContext : public WorkingContext {
  public:
    /// Throws `SQLite::Exception`.
    explicit ManagedObjectContext(std::shared_ptr<PersistentContainer> container);

    /// A change of the tables. It is run at each attempt to commit it, and for each read until then, and has
    /// to do the same each time.
    ///
    /// Gives the row that was there already and has been given new values.
    using Change = std::function<std::optional<RowKey>(ManagedObjectContext&)>;

    /// A key for a row to be inserted, for the change that inserts it: `wanted`, which is 0 at its first run,
    /// unless another process has put a row there in between.
    RowKey freeKey(RowKey wanted);

    /// Leaves a change pending.
    void add(Change change) { pending_.push_back(std::move(change)); }

    /// Puts all pending changes on disk in one commit, tells the peers of it and announces it; does nothing
    /// if there are none. If the commit fails, throws `SQLite::Exception` and leaves them pending.
    void save();

    /// Announces what other processes have committed since the last call, if they have. Throws
    /// `SQLite::Exception`.
    void announceForeignCommits();

    FileBookmarkResolver& bookmarks() { return bookmarks_; }

    /// Which processes use the store.
    const PeerFile& peers() const { return container_->peers(); }

    /// Runs `query` on the tables as they are with the pending changes.
    template <typename Query>
    auto fetch(Query&& query) {
        if (pending_.empty()) {
            return query();
        }
        // Never committed: its end takes the changes back. Begun as a write, so that it waits for the writes
        // of other processes.
        const SQLite::Transaction view(container_->database(), SQLite::TransactionBehavior::IMMEDIATE);
        applyPending();
        return query();
    }

    /// A statement that is kept prepared. Its values of the last use are still bound.
    SQLite::Statement& statement(const std::string& sql);

  private:
    std::vector<RowKey> applyPending();
    RowKey lastKey();
    std::int64_t dataVersion();

    std::shared_ptr<PersistentContainer> container_;
    std::unordered_map<std::string, SQLite::Statement> statements_;
    std::vector<Change> pending_;
    FileBookmarkResolver bookmarks_;
    RowKey nextKey_;
    std::int64_t dataVersion_;
};

/// One use of a kept statement: its end makes the statement ready for the next.
class StatementUse {
  public:
    explicit StatementUse(SQLite::Statement& statement) : statement_(statement) {}
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;
    // A step that failed is reported by the step, not once more by the reset.
    ~StatementUse() { statement_.tryReset(); }

    SQLite::Statement& operator*() { return statement_; }
    SQLite::Statement* operator->() { return &statement_; }

  private:
    SQLite::Statement& statement_;
};

} // namespace corvanta
