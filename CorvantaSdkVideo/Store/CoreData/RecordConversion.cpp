#include <CorvantaSdkVideo/Store/CoreData/RecordConversion.hpp>

#include <platform/FileBookmark.hpp>

#include <chrono>
#include <utility>

namespace corvanta {

namespace {

LocalVideoRequest::Date date(std::int64_t nanoseconds) {
    return LocalVideoRequest::Date(
        std::chrono::duration_cast<LocalVideoRequest::Date::duration>(std::chrono::nanoseconds(nanoseconds)));
}

// The stored URL itself as long as the file is where it says: it may be written in another way.
URL presentURL(const URL& stored, const std::optional<std::string>& bookmark,
               FileBookmarkResolver& resolver) {
    const auto path = bookmark ? resolver.resolve(*bookmark) : std::nullopt;
    return path && *path != stored.path() ? URL::fromFilePath(*path) : stored;
}

std::optional<LocalVideoRequest> makeRecord(ManagedVideoRequest&& row, FileBookmarkResolver& resolver) {
    const auto status = LocalVideoRequest::statusWithRawValue(row.status);
    const auto type = LocalVideoRequest::typeWithRawValue(row.type);
    const auto id = parseUUID(row.id);
    const auto outputPath = URL::parse(row.outputPath);
    if (!status || !type || !id || !outputPath) {
        return std::nullopt;
    }
    std::vector<LocalVideoRequestFile> inputFiles;
    inputFiles.reserve(row.inputFiles.size());
    for (const ManagedVideoRequestInputFile& file : row.inputFiles) {
        const auto path = URL::parse(file.path);
        if (!path) {
            return std::nullopt;
        }
        inputFiles.push_back({presentURL(*path, file.pathBookmark, resolver), file.index});
    }
    return LocalVideoRequest{*id,
                             *status,
                             presentURL(*outputPath, row.outputBookmark, resolver),
                             storedOutput(*outputPath),
                             *type,
                             std::move(row.error),
                             std::move(inputFiles),
                             std::move(row.rawData),
                             std::move(row.processId),
                             date(row.createdAt),
                             date(row.updatedAt)};
}

} // namespace

std::optional<LocalVideoRequest> makeRecord(std::optional<ManagedVideoRequest> row) {
    FileBookmarkResolver resolver;
    return row ? makeRecord(std::move(*row), resolver) : std::nullopt;
}

std::vector<LocalVideoRequest> makeRecords(std::vector<ManagedVideoRequest> rows) {
    FileBookmarkResolver resolver;
    std::vector<LocalVideoRequest> records;
    records.reserve(rows.size());
    for (ManagedVideoRequest& row : rows) {
        if (auto record = makeRecord(std::move(row), resolver)) {
            records.push_back(std::move(*record));
        }
    }
    return records;
}

} // namespace corvanta
