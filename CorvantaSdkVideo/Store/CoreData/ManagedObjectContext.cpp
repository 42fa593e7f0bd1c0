#include <CorvantaSdkVideo/Store/CoreData/ManagedObjectContext.hpp>

#include <algorithm>

namespace corvanta {

ManagedObjectContext::ManagedObjectContext(std::shared_ptr<PersistentContainer> container)
    : container_(std::move(container)), nextKey_(lastKey() + 1), dataVersion_(dataVersion()) {}

RowKey ManagedObjectContext::freeKey(RowKey wanted) {
    // The number of a row that has been deleted is not given again.
    const RowKey key = std::max(wanted > 0 ? wanted : nextKey_, lastKey() + 1);
    nextKey_ = std::max(nextKey_, key + 1);
    return key;
}

void ManagedObjectContext::save() {
    if (pending_.empty()) {
        return;
    }
    Notice notice;
    {
        SQLite::Transaction transaction(container_->database(), SQLite::TransactionBehavior::IMMEDIATE);
        notice.updatedRows = applyPending();
        transaction.commit();
    }
    pending_.clear();
    peers().tell();
    announceCommit(notice);
}

void ManagedObjectContext::announceForeignCommits() {
    if (const std::int64_t version = dataVersion(); version != dataVersion_) {
        dataVersion_ = version;
        announceCommit({.isForeign = true, .updatedRows = {}});
    }
}

SQLite::Statement& ManagedObjectContext::statement(const std::string& sql) {
    const auto known = statements_.find(sql);
    if (known != statements_.end()) {
        return known->second;
    }
    return statements_.emplace(sql, SQLite::Statement(container_->database(), sql)).first->second;
}

std::vector<RowKey> ManagedObjectContext::applyPending() {
    std::vector<RowKey> updatedRows;
    for (const Change& change : pending_) {
        if (const auto row = change(*this)) {
            updatedRows.push_back(*row);
        }
    }
    return updatedRows;
}

RowKey ManagedObjectContext::lastKey() {
    static const std::string sql = "SELECT coalesce(max(primaryKey), 0) FROM ManagedVideoRequest";
    StatementUse last(statement(sql));
    last->executeStep();
    return last->getColumn(0).getInt64();
}

// Changes with the commits of others alone.
std::int64_t ManagedObjectContext::dataVersion() {
    static const std::string sql = "PRAGMA data_version";
    StatementUse version(statement(sql));
    version->executeStep();
    return version->getColumn(0).getInt64();
}

} // namespace corvanta
