#include <CorvantaSdkVideo/Store/CoreData/ManagedVideoRequest.hpp>

#include <CorvantaSdkVideo/Store/CoreData/StoredColumns.hpp>
#include <platform/Errors.hpp>
#include <platform/FileBookmark.hpp>

#include <SQLiteCpp/Column.h>

#include <algorithm>
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

// The run has written another file than the one that was there when the request was stored.
std::optional<std::string> presentOutputBookmark(const UUID& id, ManagedObjectContext& context) {
    static const std::string sql =
        "SELECT outputPath FROM ManagedVideoRequest WHERE id = ? ORDER BY primaryKey LIMIT 1";
    try {
        const auto output = context.fetch([&] {
            StatementUse lookup(context.statement(sql));
            lookup->bind(1, uuidString(id));
            return lookup->executeStep() ? URL::parse(lookup->getColumn(0).getString()) : std::nullopt;
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
    using Request = RequestColumn;
    using File = InputFileColumn;
    static const std::string insertRequest = insertionInto<Request>("ManagedVideoRequest");
    static const std::string insertFile = insertionInto<File>("ManagedVideoRequestInputFile");
    StatementUse request(context.statement(insertRequest));
    request->bind(Request::primaryKey + 1, primaryKey);
    request->bind(Request::id + 1, row.id);
    request->bind(Request::status + 1, row.status);
    request->bind(Request::outputPath + 1, row.outputPath);
    bindBytes(*request, Request::outputBookmark + 1, row.outputBookmark);
    request->bind(Request::type + 1, row.type);
    bindText(*request, Request::rawData + 1, row.rawData);
    request->bind(Request::createdAt + 1, row.createdAt);
    request->bind(Request::updatedAt + 1, row.updatedAt);
    request->exec();
    SQLite::Statement& fileStatement = context.statement(insertFile);
    std::int64_t index = 0;
    for (const NewRow::InputFile& input : row.inputFiles) {
        StatementUse file(fileStatement);
        file->bind(File::request + 1, primaryKey);
        file->bind(File::index + 1, index++);
        file->bind(File::path + 1, input.path);
        bindBytes(*file, File::pathBookmark + 1, input.pathBookmark);
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
