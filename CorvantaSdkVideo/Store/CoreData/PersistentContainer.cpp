#include <CorvantaSdkVideo/Store/CoreData/PersistentContainer.hpp>

#include <CorvantaSdkVideo/Store/CoreData/StoredColumns.hpp>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include <sqlite3.h>

#include <array>
#include <chrono>
#include <string>

namespace corvanta {

namespace {

constexpr int modelVersion = 2;

// Another process, or a person's shell, may hold the file for a moment.
constexpr std::chrono::milliseconds busyTimeout{5000};

// The spill is off so that nothing is written before the commit: a read that sees pending changes then never
// fails for want of space. Every process that opens the file reads the whole log first, so that is kept
// shorter than SQLite's default of 1000 pages.
constexpr const char* settings = R"(
    PRAGMA synchronous = FULL;
    PRAGMA foreign_keys = ON;
    PRAGMA cache_spill = OFF;
    PRAGMA wal_autocheckpoint = 100;
)";

constexpr const char* firstModel = R"(
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
)";

constexpr const char* addOwners = R"(
    ALTER TABLE ManagedVideoRequest ADD COLUMN owner INTEGER;
    PRAGMA user_version = 2;
)";

// Can be prepared only where all tables and columns are there.
std::array<std::string, 2> modelChecks() {
    return {"SELECT " + columnList<RequestColumn>() + ", owner FROM ManagedVideoRequest",
            "SELECT " + columnList<InputFileColumn>() + " FROM ManagedVideoRequestInputFile"};
}

int versionOf(SQLite::Database& database) {
    const int version = database.execAndGet("PRAGMA user_version");
    if (version < 0 || version > modelVersion) {
        throw SQLite::Exception("The file is of version " + std::to_string(version) + ", newer than " +
                                std::to_string(modelVersion) + ", the newest that is known.");
    }
    if (version == 0 && database.execAndGet("SELECT count(*) FROM sqlite_schema").getInt() != 0) {
        throw SQLite::Exception("The file belongs to another program.");
    }
    return version;
}

// Where several processes ask for it at once, SQLite refuses it to some without waiting.
void turnOnWriteAheadLog(SQLite::Database& database) {
    const auto deadline = std::chrono::steady_clock::now() + busyTimeout;
    for (;;) {
        try {
            if (database.execAndGet("PRAGMA journal_mode = WAL").getString() != "wal") {
                throw SQLite::Exception("The file can't keep a write-ahead log.");
            }
            return;
        } catch (const SQLite::Exception& error) {
            if (error.getErrorCode() != SQLITE_BUSY || std::chrono::steady_clock::now() > deadline) {
                throw;
            }
        }
        // Waits for whoever has it.
        SQLite::Transaction(database, SQLite::TransactionBehavior::IMMEDIATE).commit();
    }
}

// A new file grows through all versions, so that it comes out as an old one does.
void bringUpToDate(SQLite::Database& database) {
    switch (versionOf(database)) {
    case 0:
        database.exec(firstModel);
        [[fallthrough]];
    case 1:
        database.exec(addOwners);
        [[fallthrough]];
    default:
        break;
    }
}

} // namespace

PersistentContainer::PersistentContainer(const std::string& path)
    : database_(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX,
                static_cast<int>(busyTimeout.count())) {
    {
        // Looked at before anything is changed: a file of somebody else's must stay as it is. At one moment,
        // since another process may be making it.
        const SQLite::Transaction look(database_);
        versionOf(database_);
    }
    if (sqlite3_db_readonly(database_.getHandle(), "main") != 0) {
        throw SQLite::Exception("The file can't be written.", SQLITE_READONLY);
    }
    turnOnWriteAheadLog(database_);
    database_.exec(settings);
    // Also in a file that is up to date: the write lock shows whether its folder can be written. Others may
    // open the file at the same time.
    SQLite::Transaction transaction(database_, SQLite::TransactionBehavior::IMMEDIATE);
    bringUpToDate(database_);
    for (const std::string& check : modelChecks()) {
        SQLite::Statement(database_, check);
    }
    transaction.commit();
    // SQLite's name of the file, so that all who reach it through a link meet.
    peers_.emplace(std::string(sqlite3_db_filename(database_.getHandle(), "main")) + "-peers");
}

} // namespace corvanta
