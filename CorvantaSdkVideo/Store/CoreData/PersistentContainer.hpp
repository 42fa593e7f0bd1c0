#pragma once

#include <platform/PeerFile.hpp>

#include <SQLiteCpp/Database.h>

#include <optional>
#include <string>

namespace corvanta {

/// The opened store file. WAL and synchronous FULL: what is committed survives a loss of power.
///
/// The tables bear the names of the entities and their columns those of the attributes. An id is lower-case
/// text, a status its number, a path its URL's text, a date an integer of nanoseconds since 1970 (UTC), so
/// that it reads back exactly:
///
///     SELECT id, status, datetime(updatedAt / 1000000000, 'unixepoch'), outputPath FROM ManagedVideoRequest;
///
/// A request that is being run has its `owner`, the mark of a peer of the store: beside the store lies the
/// file
/// "-peers" by which the processes that use it know of each other.
class PersistentContainer {
  public:
    /// Opens the file at an absolute path, makes the tables in a new one and brings those of an older version
    /// up to date, at once or not at all. Throws a `std::exception` that tells the reason if that fails, if
    /// the file can't be written, or if it was made by a newer version or by another program; it is left
    /// alone then.
    explicit PersistentContainer(const std::string& path);

    SQLite::Database& database() { return database_; }
    const PeerFile& peers() const { return *peers_; }

  private:
    SQLite::Database database_;
    std::optional<PeerFile> peers_;
};

} // namespace corvanta
