#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequestStatus.hpp>
#include <CorvantaSdkVideo/Store/CoreData/ManagedObjectContext.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/UpdateRequestData.hpp>
#include <platform/UUID.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {

/// A row of an input file, as it is stored.
struct ManagedVideoRequestInputFile {
    std::string path;
    std::int64_t index;
    std::optional<std::string> pathBookmark;
};

/// A row of a request with its input files, as it is stored (see `PersistentContainer`): a copy, not live.
///
/// The operations run within the `performSync` of the context that they take. Rows come in the order of their
/// insertion, input files in the order of their index. `findBy` and `findAll` throw `SQLite::Exception` when
/// the fetch fails; `getRequestBy` and `getRequestsBy` give no rows then. Operations on one id take the first
/// row that has it.
struct ManagedVideoRequest {
    RowKey primaryKey;
    std::string id;
    std::int64_t status;
    std::string outputPath;
    std::optional<std::string> outputBookmark;
    std::string type;
    std::optional<std::string> rawData;
    std::optional<std::string> processId;
    std::optional<std::string> error;
    std::int64_t createdAt;
    std::int64_t updatedAt;
    std::vector<ManagedVideoRequestInputFile> inputFiles;

    static std::optional<ManagedVideoRequest> findBy(const UUID& id, ManagedObjectContext& context);
    static std::optional<ManagedVideoRequest> getRequestBy(const UUID& id, ManagedObjectContext& context);
    static std::optional<ManagedVideoRequest> getRequestBy(RowKey key, ManagedObjectContext& context);
    static std::vector<ManagedVideoRequest> getRequestsBy(LocalVideoRequest::Status status,
                                                          ManagedObjectContext& context);
    static std::vector<ManagedVideoRequest> findBy(CorvantaSdkVideoRequestStatus status,
                                                   ManagedObjectContext& context);
    static std::vector<ManagedVideoRequest> findAll(ManagedObjectContext& context);

    /// The changes below stay pending until the context is saved.

    /// Makes the bookmarks of the paths. Stops the process for 32,768 input files or more.
    static void insertUpload(ManagedObjectContext& context, const LocalVideoRequest& request);
    /// False, with nothing changed, if there is no such row.
    static bool update(const UUID& id, const UpdateRequestData& data, ManagedObjectContext& context);
    static bool remove(const UUID& id, ManagedObjectContext& context);
    /// Gives all rows of one status another, leaving their dates.
    static void replaceStatus(LocalVideoRequest::Status status, LocalVideoRequest::Status by,
                              ManagedObjectContext& context);
};

} // namespace corvanta
