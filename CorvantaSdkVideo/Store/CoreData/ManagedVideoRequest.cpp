#include <CorvantaSdkVideo/Store/CoreData/ManagedVideoRequest.hpp>

#include <CorvantaSdkVideo/Store/CoreData/RecordCollector.hpp>
#include <platform/Errors.hpp>
#include <platform/FileBookmark.hpp>

#include <SQLiteCpp/Column.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <memory>
#include <utility>

namespace corvanta {

namespace {

// What a 16-bit attribute can't hold must not be stored as another number.
std::int64_t narrow(std::int64_t value, const char* complaint) {
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max()) {
        fatalError(complaint);
    }
    return value;
}

std::int64_t narrow(LocalVideoRequest::Status status) {
    return narrow(static_cast<int>(status), "The status of a video request doesn't fit 16 bits.");
}

std::int64_t nanoseconds(LocalVideoRequest::Date date) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(date.time_since_epoch()).count();
}

void bindText(SQLite::Statement& statement, int place, const std::optional<std::string>& text) {
    if (text) {
        statement.bind(place, *text);
    } else {
        statement.bind(place);
    }
}

void bindBytes(SQLite::Statement& statement, int place, const std::optional<std::string>& bytes) {
    if (bytes) {
        statement.bind(place, bytes->data(), static_cast<int>(bytes->size()));
    } else {
        statement.bind(place);
    }
}

void bindNumber(SQLite::Statement& statement, int place, const std::optional<std::int64_t>& number) {
    if (number) {
        statement.bind(place, *number);
    } else {
        statement.bind(place);
    }
}

// The row that an update "RETURNING primaryKey" has met.
std::optional<RowKey> updatedRow(SQLite::Statement& update) {
    return update.executeStep() ? std::optional<RowKey>(update.getColumn(0).getInt64()) : std::nullopt;
}

std::string_view bytes(const SQLite::Column& column) {
    const auto* start = static_cast<const char*>(column.getBlob());
    return {start, static_cast<std::size_t>(column.getBytes())};
}

std::optional<std::string_view> optionalBytes(const SQLite::Column& column) {
    return column.isNull() ? std::nullopt : std::optional(bytes(column));
}

// What the query below gives, in its order.
namespace joined {
enum Column {
    primaryKey,
    id,
    status,
    outputPath,
    outputBookmark,
    type,
    rawData,
    processId,
    error,
    createdAt,
    updatedAt,
    fileIndex,
    filePath,
    filePathBookmark,
    count
};
} // namespace joined

// The requests that fit `predicate`, which has at most one parameter, each with its input files.
std::string joinedQuery(const std::string& predicate) {
    return R"(SELECT r.primaryKey, r.id, r.status, r.outputPath, r.outputBookmark, r.type, r.rawData,
                     r.processId, r.error, r.createdAt, r.updatedAt, f."index", f.path, f.pathBookmark
              FROM ManagedVideoRequest r LEFT JOIN ManagedVideoRequestInputFile f ON f.request = r.primaryKey )" +
           predicate + R"( ORDER BY r.primaryKey, f."index")";
}

template <int... Number>
std::array<SQLite::Column, sizeof...(Number)> columnsOf(const SQLite::Statement& statement,
                                                        std::integer_sequence<int, Number...>) {
    return {statement.getColumn(Number)...};
}

std::vector<LocalVideoRequest> readRecords(SQLite::Statement& query, FileBookmarkResolver& bookmarks) {
    if (!query.executeStep()) {
        return {};
    }
    // A column gives the value of the row that the statement is at, so one of each serves all rows.
    const auto column = columnsOf(query, std::make_integer_sequence<int, joined::count>());
    RecordCollector records(bookmarks);
    std::optional<RowKey> last;
    do {
        const RowKey key = column[joined::primaryKey].getInt64();
        if (key != last) {
            last = key;
            records.add(ManagedVideoRequest{
                bytes(column[joined::id]), column[joined::status].getInt64(),
                bytes(column[joined::outputPath]), optionalBytes(column[joined::outputBookmark]),
                bytes(column[joined::type]), optionalBytes(column[joined::rawData]),
                optionalBytes(column[joined::processId]), optionalBytes(column[joined::error]),
                column[joined::createdAt].getInt64(), column[joined::updatedAt].getInt64()});
        }
        if (!column[joined::fileIndex].isNull()) {
            records.add(ManagedVideoRequestInputFile{bytes(column[joined::filePath]),
                                                     column[joined::fileIndex].getInt64(),
                                                     optionalBytes(column[joined::filePathBookmark])});
        }
    } while (query.executeStep());
    return records.take();
}

template <typename... Parameter>
std::vector<LocalVideoRequest> fetchRecords(ManagedObjectContext& context, const std::string& sql,
                                            const Parameter&... parameter) {
    return context.fetch([&] {
        StatementUse query(context.statement(sql));
        (query->bind(1, parameter), ...);
        return readRecords(*query, context.bookmarks());
    });
}

std::optional<LocalVideoRequest> first(std::vector<LocalVideoRequest> records) {
    return records.empty() ? std::nullopt : std::optional(std::move(records.front()));
}

std::vector<LocalVideoRequest> findByStatus(int rawValue, ManagedObjectContext& context) {
    static const std::string sql = joinedQuery("WHERE r.status = ?");
    return fetchRecords(context, sql, rawValue);
}

// The run has written another file than the one that was there when the request was stored.
std::optional<std::string> presentOutputBookmark(const UUID& id, ManagedObjectContext& context) {
    static const std::string sql =
        "SELECT outputPath FROM ManagedVideoRequest WHERE id = ? ORDER BY primaryKey LIMIT 1";
    try {
        const auto output = context.fetch([&] {
            StatementUse lookup(context.statement(sql));
            lookup->bind(1, uuidString(id));
            return lookup->executeStep() ? URL::parse(bytes(lookup->getColumn(0))) : std::nullopt;
        });
        return output ? makeFileBookmark(output->path()) : std::nullopt;
    } catch (const SQLite::Exception&) {
        // The update itself matters more.
        return std::nullopt;
    }
}

// A request to be inserted, in its stored form.
struct NewRow {
    struct InputFile {
        std::string path;
        std::optional<std::string> pathBookmark;
    };

    std::string id;
    std::int64_t status;
    std::string outputPath;
    std::optional<std::string> outputBookmark;
    std::string type;
    std::optional<std::string> rawData;
    std::int64_t createdAt;
    std::int64_t updatedAt;
    std::vector<InputFile> inputFiles;
};

void insertRow(const NewRow& row, RowKey primaryKey, ManagedObjectContext& context) {
    static const std::string insertRequest =
        R"(INSERT INTO ManagedVideoRequest (primaryKey, id, status, outputPath, outputBookmark, type, rawData,
                                            createdAt, updatedAt) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?))";
    static const std::string insertFile =
        R"(INSERT INTO ManagedVideoRequestInputFile (request, "index", path, pathBookmark) VALUES (?, ?, ?, ?))";
    StatementUse request(context.statement(insertRequest));
    request->bind(1, primaryKey);
    request->bind(2, row.id);
    request->bind(3, row.status);
    request->bind(4, row.outputPath);
    bindBytes(*request, 5, row.outputBookmark);
    request->bind(6, row.type);
    bindText(*request, 7, row.rawData);
    request->bind(8, row.createdAt);
    request->bind(9, row.updatedAt);
    request->exec();
    SQLite::Statement& fileStatement = context.statement(insertFile);
    std::int64_t index = 0;
    for (const NewRow::InputFile& input : row.inputFiles) {
        StatementUse file(fileStatement);
        file->bind(1, primaryKey);
        file->bind(2, index++);
        file->bind(3, input.path);
        bindBytes(*file, 4, input.pathBookmark);
        file->exec();
    }
}

// New values of the first row of an id; what is absent is left alone.
struct NewValues {
    std::string id;
    std::int64_t updatedAt;
    std::optional<std::optional<std::string>> error;
    std::optional<std::int64_t> status;
    /// Goes with the status.
    std::optional<RowKey> owner;
    std::optional<std::optional<std::string>> processId;
    std::optional<std::string> outputBookmark;
};

std::optional<RowKey> updateRow(const NewValues& values, ManagedObjectContext& context) {
    std::string sql = "UPDATE ManagedVideoRequest SET updatedAt = ?1";
    const auto assign = [&sql](bool present, const char* assignment) { sql += present ? assignment : ""; };
    assign(values.error.has_value(), ", error = ?2");
    assign(values.status.has_value(), ", status = ?3, owner = ?4");
    assign(values.processId.has_value(), ", processId = ?5");
    assign(values.outputBookmark.has_value(), ", outputBookmark = ?6");
    sql += " WHERE primaryKey = (SELECT min(primaryKey) FROM ManagedVideoRequest WHERE id = ?7)"
           " RETURNING primaryKey";
    StatementUse update(context.statement(sql));
    update->bind(1, values.updatedAt);
    if (values.error) {
        bindText(*update, 2, *values.error);
    }
    if (values.status) {
        update->bind(3, *values.status);
        bindNumber(*update, 4, values.owner);
    }
    if (values.processId) {
        bindText(*update, 5, *values.processId);
    }
    if (values.outputBookmark) {
        bindBytes(*update, 6, values.outputBookmark);
    }
    update->bind(7, values.id);
    return updatedRow(*update);
}

// A row that is `processing`.
struct RunningRow {
    RowKey primaryKey;
    std::optional<std::int64_t> owner;
};

// Only as long as it is as it was found: a process may have begun to run it.
std::optional<RowKey> cancelRow(const RunningRow& row, ManagedObjectContext& context) {
    static const std::string sql =
        "UPDATE ManagedVideoRequest SET status = ?, owner = NULL WHERE primaryKey = ? AND status = ? AND "
        "owner IS ? RETURNING primaryKey";
    StatementUse update(context.statement(sql));
    update->bind(1, static_cast<int>(LocalVideoRequest::Status::cancelled));
    update->bind(2, row.primaryKey);
    update->bind(3, static_cast<int>(LocalVideoRequest::Status::processing));
    bindNumber(*update, 4, row.owner);
    return updatedRow(*update);
}

std::vector<RunningRow> runningRows(ManagedObjectContext& context) {
    static const std::string sql = "SELECT primaryKey, owner FROM ManagedVideoRequest WHERE status = ?";
    return context.fetch([&] {
        StatementUse lookup(context.statement(sql));
        lookup->bind(1, static_cast<int>(LocalVideoRequest::Status::processing));
        std::vector<RunningRow> rows;
        while (lookup->executeStep()) {
            const SQLite::Column owner = lookup->getColumn(1);
            rows.push_back({lookup->getColumn(0).getInt64(),
                            owner.isNull() ? std::nullopt : std::optional(owner.getInt64())});
        }
        return rows;
    });
}

} // namespace

std::optional<LocalVideoRequest> ManagedVideoRequest::findBy(const UUID& id, ManagedObjectContext& context) {
    static const std::string sql =
        joinedQuery("WHERE r.primaryKey = (SELECT min(primaryKey) FROM ManagedVideoRequest WHERE id = ?)");
    return first(fetchRecords(context, sql, uuidString(id)));
}

std::optional<LocalVideoRequest> ManagedVideoRequest::getRequestBy(const UUID& id,
                                                                   ManagedObjectContext& context) {
    try {
        return findBy(id, context);
    } catch (const SQLite::Exception&) {
        return std::nullopt;
    }
}

std::optional<LocalVideoRequest> ManagedVideoRequest::getRequestBy(RowKey key,
                                                                   ManagedObjectContext& context) {
    static const std::string sql = joinedQuery("WHERE r.primaryKey = ?");
    try {
        return first(fetchRecords(context, sql, key));
    } catch (const SQLite::Exception&) {
        return std::nullopt;
    }
}

std::vector<LocalVideoRequest> ManagedVideoRequest::getRequestsBy(LocalVideoRequest::Status status,
                                                                  ManagedObjectContext& context) {
    try {
        return findByStatus(static_cast<int>(status), context);
    } catch (const SQLite::Exception&) {
        return {};
    }
}

std::vector<LocalVideoRequest> ManagedVideoRequest::findBy(CorvantaSdkVideoRequestStatus status,
                                                           ManagedObjectContext& context) {
    return findByStatus(static_cast<int>(status), context);
}

std::vector<LocalVideoRequest> ManagedVideoRequest::findAll(ManagedObjectContext& context) {
    static const std::string sql = joinedQuery("");
    return fetchRecords(context, sql);
}

std::optional<RowKey> ManagedVideoRequest::keyOf(const UUID& id, ManagedObjectContext& context) {
    static const std::string sql =
        "SELECT primaryKey FROM ManagedVideoRequest WHERE id = ? ORDER BY primaryKey LIMIT 1";
    try {
        return context.fetch([&]() -> std::optional<RowKey> {
            StatementUse lookup(context.statement(sql));
            lookup->bind(1, uuidString(id));
            return lookup->executeStep() ? std::optional(lookup->getColumn(0).getInt64()) : std::nullopt;
        });
    } catch (const SQLite::Exception&) {
        return std::nullopt;
    }
}

bool ManagedVideoRequest::isRunElsewhere(const UUID& id, ManagedObjectContext& context) {
    const auto key = keyOf(id, context);
    const PeerFile& peers = context.peers();
    try {
        return std::ranges::any_of(runningRows(context), [&](const RunningRow& row) {
            return row.primaryKey == key && row.owner && row.owner != peers.mark() &&
                   peers.isAlive(*row.owner);
        });
    } catch (const SQLite::Exception&) {
        return false;
    }
}

void ManagedVideoRequest::insertUpload(ManagedObjectContext& context, const LocalVideoRequest& request) {
    auto row = std::make_shared<NewRow>(NewRow{
        uuidString(request.id),
        narrow(request.status),
        request.outputPath.absoluteString(),
        makeFileBookmark(request.outputPath.path()),
        std::string(LocalVideoRequest::rawValue(request.type)),
        request.rawData,
        nanoseconds(request.createdAt),
        nanoseconds(request.updatedAt),
        {},
    });
    // One more than the last position has to fit as well.
    narrow(static_cast<std::int64_t>(request.inputFiles.size()),
           "A video request can't have 32,768 input files or more: their count doesn't fit 16 bits.");
    row->inputFiles.reserve(request.inputFiles.size());
    for (const LocalVideoRequestFile& file : request.inputFiles) {
        row->inputFiles.push_back({file.path.absoluteString(), makeFileBookmark(file.path.path())});
    }
    context.add([row, key = RowKey{0}](ManagedObjectContext& in) mutable -> std::optional<RowKey> {
        key = in.freeKey(key);
        insertRow(*row, key, in);
        return std::nullopt;
    });
}

void ManagedVideoRequest::update(const UUID& id, const UpdateRequestData& data,
                                 ManagedObjectContext& context) {
    NewValues values{};
    values.id = uuidString(id);
    values.updatedAt = nanoseconds(std::chrono::system_clock::now());
    for (const UpdateRequestData::Field& field : data.fields) {
        switch (field.kind()) {
        case UpdateRequestData::Field::Case::error:
            values.error = field.text();
            break;
        case UpdateRequestData::Field::Case::status:
            values.status = narrow(field.newStatus());
            values.owner.reset();
            if (field.newStatus() == LocalVideoRequest::Status::processing) {
                values.owner = context.peers().mark();
            } else if (field.newStatus() == LocalVideoRequest::Status::completed) {
                values.outputBookmark = presentOutputBookmark(id, context);
            }
            break;
        case UpdateRequestData::Field::Case::processId:
            values.processId = field.text();
            break;
        }
    }
    context.add([values = std::move(values)](ManagedObjectContext& in) { return updateRow(values, in); });
}

void ManagedVideoRequest::remove(const UUID& id, ManagedObjectContext& context) {
    static const std::string sql =
        "DELETE FROM ManagedVideoRequest WHERE primaryKey = (SELECT min(primaryKey) FROM ManagedVideoRequest "
        "WHERE id = ?)";
    context.add([id = uuidString(id)](ManagedObjectContext& in) -> std::optional<RowKey> {
        StatementUse removal(in.statement(sql));
        removal->bind(1, id);
        removal->exec();
        return std::nullopt;
    });
}

bool ManagedVideoRequest::cancelAbandoned(ManagedObjectContext& context, bool isStart) {
    const PeerFile& peers = context.peers();
    bool hasAny = false;
    for (const RunningRow& row : runningRows(context)) {
        const bool isAnothers = row.owner && row.owner != peers.mark();
        if (isAnothers ? !peers.isAlive(*row.owner) : isStart) {
            context.add([row](ManagedObjectContext& in) { return cancelRow(row, in); });
            hasAny = true;
        }
    }
    return hasAny;
}

} // namespace corvanta
