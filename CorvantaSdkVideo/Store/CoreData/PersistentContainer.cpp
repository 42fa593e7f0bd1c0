#include <CorvantaSdkVideo/Store/CoreData/PersistentContainer.hpp>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include <sqlite3.h>

namespace corvanta {

namespace {

constexpr int modelVersion = 1;

// A person's shell may hold the file for a moment.
constexpr int busyTimeoutInMilliseconds = 5000;

// The spill is off so that nothing is written before the commit: a read that sees pending changes then never
// fails for want of space.
constexpr const char* settings = R"(
    PRAGMA synchronous = FULL;
    PRAGMA foreign_keys = ON;
    PRAGMA cache_spill = OFF;
)";

constexpr const char* model = R"(
    CREATE TABLE ManagedVideoRequest (
        primaryKey INTEGER PRIMARY KEY,
        id TEXT NOT NULL,
        status INTEGER NOT NULL,
        outputPath TEXT NOT NULL,
        outputBookmark BLOB,
        type TEXT NOT NULL,
        rawData TEXT,
        processId TEXT,
        error TEXT,
        createdAt INTEGER NOT NULL,
        updatedAt INTEGER NOT NULL
    ) STRICT;
    CREATE INDEX ManagedVideoRequest_id ON ManagedVideoRequest (id);
    CREATE INDEX ManagedVideoRequest_status ON ManagedVideoRequest (status);
    CREATE TABLE ManagedVideoRequestInputFile (
        request INTEGER NOT NULL REFERENCES ManagedVideoRequest (primaryKey) ON DELETE CASCADE,
        "index" INTEGER NOT NULL,
        path TEXT NOT NULL,
        pathBookmark BLOB,
        PRIMARY KEY (request, "index")
    ) STRICT, WITHOUT ROWID;
    PRAGMA user_version = 1;
)";

// Can be prepared only where all tables and columns are there.
constexpr auto modelChecks = {
    "SELECT primaryKey, id, status, outputPath, outputBookmark, type, rawData, processId, error, createdAt, "
    "updatedAt FROM ManagedVideoRequest",
    R"(SELECT request, "index", path, pathBookmark FROM ManagedVideoRequestInputFile)",
};

} // namespace

PersistentContainer::PersistentContainer(const std::string& path)
    : database_(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX,
                busyTimeoutInMilliseconds) {
    // Looked at before anything is changed: a file of somebody else's must stay as it is.
    const int version = database_.execAndGet("PRAGMA user_version");
    const bool isNew =
        version == 0 && database_.execAndGet("SELECT count(*) FROM sqlite_schema").getInt() == 0;
    if (!isNew && version != modelVersion) {
        throw SQLite::Exception("The file is of another version or of another program.");
    }
    if (sqlite3_db_readonly(database_.getHandle(), "main") != 0) {
        throw SQLite::Exception("The file can't be written.", SQLITE_READONLY);
    }
    if (database_.execAndGet("PRAGMA journal_mode = WAL").getString() != "wal") {
        throw SQLite::Exception("The file can't keep a write-ahead log.");
    }
    database_.exec(settings);
    // Also in a file that is there: the write lock shows whether its folder can be written.
    SQLite::Transaction transaction(database_, SQLite::TransactionBehavior::IMMEDIATE);
    if (isNew) {
        database_.exec(model);
    }
    for (const char* check : modelChecks) {
        SQLite::Statement(database_, check);
    }
    transaction.commit();
}

} // namespace corvanta
