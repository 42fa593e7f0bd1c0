#pragma once

#include <SQLiteCpp/Database.h>

#include <string>

namespace corvanta {

/// The opened store file. WAL and synchronous FULL: what is committed survives a loss of power.
///
/// The tables bear the names of the entities and their columns those of the attributes. An id is lower-case
/// text, a status its number, a path its URL's text, a date an integer of nanoseconds since 1970 (UTC), so
/// that it reads back exactly:
///
///     SELECT id, status, datetime(updatedAt / 1000000000, 'unixepoch'), outputPath FROM ManagedVideoRequest;
class PersistentContainer {
  public:
    /// Opens the file at an absolute path and makes the tables in a new one. Throws `SQLite::Exception` if
    /// that fails, if the file can't be written, or if it was made by another version or another program.
    explicit PersistentContainer(const std::string& path);

    SQLite::Database& database() { return database_; }

  private:
    SQLite::Database database_;
};

} // namespace corvanta
