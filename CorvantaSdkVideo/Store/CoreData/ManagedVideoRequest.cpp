#include <CorvantaSdkVideo/Store/CoreData/ManagedVideoRequest.hpp>

#include <CorvantaSdkVideo/Store/CoreData/RecordCollector.hpp>
#include <CorvantaSdkVideo/Store/CoreData/StoredColumns.hpp>

#include <SQLiteCpp/Column.h>

#include <array>
#include <utility>

namespace corvanta {

namespace {

std::string_view bytes(const SQLite::Column& column) {
    const auto* start = static_cast<const char*>(column.getBlob());
    return {start, static_cast<std::size_t>(column.getBytes())};
}

std::optional<std::string_view> optionalBytes(const SQLite::Column& column) {
    return column.isNull() ? std::nullopt : std::optional(bytes(column));
}

// The requests that fit `predicate`, which has at most one parameter, each with its input files.
std::string joinedQuery(const std::string& predicate) {
    return "SELECT " + columnList<RequestColumn>("r.") + ", " + columnList<InputFileColumn>("f.") +
           " FROM ManagedVideoRequest r LEFT JOIN ManagedVideoRequestInputFile f ON f.request = "
           "r.primaryKey " +
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
    using Request = RequestColumn;
    using File = InputFileColumn;
    constexpr int filesFrom = Request::count;
    const auto columns = columnsOf(query, std::make_integer_sequence<int, filesFrom + File::count>());
    const auto request = [&columns](Request::Place place) -> const SQLite::Column& { return columns[place]; };
    const auto file = [&columns](File::Place place) -> const SQLite::Column& {
        return columns[filesFrom + place];
    };
    RecordCollector records(bookmarks);
    std::optional<RowKey> last;
    do {
        const RowKey key = request(Request::primaryKey).getInt64();
        if (key != last) {
            last = key;
            records.add(ManagedVideoRequest{
                bytes(request(Request::id)), request(Request::status).getInt64(),
                bytes(request(Request::outputPath)), optionalBytes(request(Request::outputBookmark)),
                bytes(request(Request::type)), optionalBytes(request(Request::rawData)),
                optionalBytes(request(Request::processId)), optionalBytes(request(Request::error)),
                request(Request::createdAt).getInt64(), request(Request::updatedAt).getInt64()});
        }
        if (!file(File::request).isNull()) {
            records.add(ManagedVideoRequestInputFile{bytes(file(File::path)), file(File::index).getInt64(),
                                                     optionalBytes(file(File::pathBookmark))});
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

} // namespace corvanta
