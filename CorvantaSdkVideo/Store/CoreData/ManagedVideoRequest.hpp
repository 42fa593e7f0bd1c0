#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoRequestStatus.hpp>
#include <CorvantaSdkVideo/Store/CoreData/ManagedObjectContext.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/UpdateRequestData.hpp>
#include <platform/UUID.hpp>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace corvanta {

/// A row of an input file as it is stored, valid until the next row is fetched.
struct ManagedVideoRequestInputFile {
    std::string_view path;
    std::int64_t index;
    std::optional<std::string_view> pathBookmark;
};

/// A row of a request as it is stored (see `PersistentContainer`), valid until the next row is fetched.
///
/// The operations run within the `performSync` of the context that they take, and give the records of the
/// rows. A row whose status or type is unknown has none. Records come in the order of insertion. `findBy` and
/// `findAll` throw `SQLite::Exception` when the fetch fails; `getRequestBy` and `getRequestsBy` give nothing
/// then. Operations on one id take the first row that has it.
struct ManagedVideoRequest {
    std::string_view id;
    std::int64_t status;
    std::string_view outputPath;
    std::optional<std::string_view> outputBookmark;
    std::string_view type;
    std::optional<std::string_view> rawData;
    std::optional<std::string_view> processId;
    std::optional<std::string_view> error;
    std::int64_t createdAt;
    std::int64_t updatedAt;

    static std::optional<LocalVideoRequest> findBy(const UUID& id, ManagedObjectContext& context);
    static std::optional<LocalVideoRequest> getRequestBy(const UUID& id, ManagedObjectContext& context);
    static std::optional<LocalVideoRequest> getRequestBy(RowKey key, ManagedObjectContext& context);
    static std::vector<LocalVideoRequest> getRequestsBy(LocalVideoRequest::Status status,
                                                        ManagedObjectContext& context);
    static std::vector<LocalVideoRequest> findBy(CorvantaSdkVideoRequestStatus status,
                                                 ManagedObjectContext& context);
    static std::vector<LocalVideoRequest> findAll(ManagedObjectContext& context);
    /// The row itself, also one that has no record. Nothing for a failure.
    static std::optional<RowKey> keyOf(const UUID& id, ManagedObjectContext& context);
    /// Whether the row is `processing` and another living process, or another store, is its owner. No for a
    /// failure.
    static bool isRunElsewhere(const UUID& id, ManagedObjectContext& context);

    /// The changes below stay pending until the context is saved.

    /// Makes the bookmarks of the paths. Stops the process for 32,768 input files or more.
    static void insertUpload(ManagedObjectContext& context, const LocalVideoRequest& request);
    /// A row that becomes `processing` is this store's from then on, until it gets another status. One that
    /// becomes `completed` gets the bookmark of the file that is at its output path now, if there is one.
    static void update(const UUID& id, const UpdateRequestData& data, ManagedObjectContext& context);
    static void remove(const UUID& id, ManagedObjectContext& context);
    /// Makes those `processing` rows `cancelled` whose owner is a process that is gone, leaving their dates.
    /// At the start, which nothing can have been run before, also those of this store and of nobody. Tells
    /// whether there are any. Throws `SQLite::Exception`.
    static bool cancelAbandoned(ManagedObjectContext& context, bool isStart);
};

} // namespace corvanta
