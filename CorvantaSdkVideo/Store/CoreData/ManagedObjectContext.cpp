#include <CorvantaSdkVideo/Store/CoreData/ManagedObjectContext.hpp>

#include <utility>

namespace corvanta {

ManagedObjectContext::ManagedObjectContext(std::shared_ptr<PersistentContainer> container)
    : container_(std::move(container)),
      nextKey_(container_->database()
                   .execAndGet("SELECT coalesce(max(primaryKey), 0) + 1 FROM ManagedVideoRequest")
                   .getInt64()) {}

void ManagedObjectContext::save() {
    if (pending_.empty()) {
        return;
    }
    {
        SQLite::Transaction transaction(container_->database(), SQLite::TransactionBehavior::IMMEDIATE);
        applyPending();
        transaction.commit();
    }
    std::vector<RowKey> updatedRows;
    for (const Change& change : std::exchange(pending_, {})) {
        if (change.updatedRow) {
            updatedRows.push_back(*change.updatedRow);
        }
    }
    announceCommit(updatedRows);
}

SQLite::Statement& ManagedObjectContext::statement(const std::string& sql) {
    const auto known = statements_.find(sql);
    if (known != statements_.end()) {
        return known->second;
    }
    return statements_.emplace(sql, SQLite::Statement(container_->database(), sql)).first->second;
}

void ManagedObjectContext::applyPending() {
    for (const Change& change : pending_) {
        change.apply(*this);
    }
}

} // namespace corvanta
