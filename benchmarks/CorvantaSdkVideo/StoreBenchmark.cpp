// The request store against the same statements, written by hand on SQLite's C interface with the same
// settings. Ratios are printed at the end; a ratio of 1 is the speed of the bare statements.

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace corvanta {
namespace {

namespace fs = std::filesystem;

constexpr int manyRequests = 10'000;
constexpr int streamedRequests = 1'000;

class Silence : public SharedCorvantaSdkLogSink {
    void addLog(const SharedCorvantaSdkLog&) override {}
};

fs::path newFolder() {
    std::string name = (fs::current_path() / "store-benchmark-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        std::perror(name.c_str());
        std::exit(1);
    }
    return name;
}

const fs::path root = newFolder();

// A concat of two files that aren't there: what is measured is the store, not the file system.
LocalVideoRequest makeRequest() {
    const UUID id = makeUUID();
    const std::string path = "/home/somebody/.local/share/corvanta-sdk-video/documents/" + uuidString(id);
    const auto now = std::chrono::system_clock::now();
    return {id,
            LocalVideoRequest::Status::idle,
            URL::fromFilePath(path + ".mp4"),
            CorvantaSdkVideoFileDescriptor::custom(path),
            LocalVideoRequest::OperationType::concat,
            std::nullopt,
            {{URL::fromFilePath(path + "-first.mp4"), 0}, {URL::fromFilePath(path + "-second.mp4"), 1}},
            std::nullopt,
            std::nullopt,
            now,
            now};
}

std::int64_t nanoseconds(LocalVideoRequest::Date date) {
    return std::chrono::nanoseconds(date.time_since_epoch()).count();
}

// The file of a store under hand-written statements.
class BareDatabase {
  public:
    explicit BareDatabase(const std::string& path) {
        check(sqlite3_open_v2(path.c_str(), &database_,
                              SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr));
        run("PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON; PRAGMA cache_spill = OFF;"
            "PRAGMA wal_autocheckpoint = 100;");
    }
    BareDatabase(const BareDatabase&) = delete;
    BareDatabase& operator=(const BareDatabase&) = delete;
    ~BareDatabase() {
        for (const auto& [sql, statement] : statements_) {
            sqlite3_finalize(statement);
        }
        sqlite3_close(database_);
    }

    void run(const char* sql) { check(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr)); }

    sqlite3_stmt* statement(const char* sql) {
        sqlite3_stmt*& statement = statements_[sql];
        if (statement == nullptr) {
            check(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr));
        }
        return statement;
    }

    static void bind(sqlite3_stmt* statement, int place, const std::string& text) {
        sqlite3_bind_text(statement, place, text.c_str(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    }

    void finish(sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE) {
            check(SQLITE_ERROR);
        }
        sqlite3_reset(statement);
    }

  private:
    void check(int result) {
        if (result != SQLITE_OK) {
            std::fprintf(stderr, "%s\n", sqlite3_errmsg(database_));
            std::exit(1);
        }
    }

    sqlite3* database_ = nullptr;
    std::map<const char*, sqlite3_stmt*> statements_;
};

void insert(BareDatabase& bare, std::int64_t key, const LocalVideoRequest& request) {
    sqlite3_stmt* row = bare.statement(
        "INSERT INTO ManagedVideoRequest (primaryKey, id, status, outputPath, outputBookmark, type, rawData, "
        "createdAt, updatedAt) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    sqlite3_bind_int64(row, 1, key);
    BareDatabase::bind(row, 2, uuidString(request.id));
    sqlite3_bind_int64(row, 3, static_cast<int>(request.status));
    BareDatabase::bind(row, 4, request.outputPath.absoluteString());
    BareDatabase::bind(row, 6, "concat");
    sqlite3_bind_int64(row, 8, nanoseconds(request.createdAt));
    sqlite3_bind_int64(row, 9, nanoseconds(request.updatedAt));
    bare.finish(row);
    sqlite3_stmt* file = bare.statement("INSERT INTO ManagedVideoRequestInputFile (request, \"index\", path, "
                                        "pathBookmark) VALUES (?, ?, ?, ?)");
    for (const LocalVideoRequestFile& input : request.inputFiles) {
        sqlite3_bind_int64(file, 1, key);
        sqlite3_bind_int64(file, 2, input.index);
        BareDatabase::bind(file, 3, input.path.absoluteString());
        bare.finish(file);
    }
}

// A store file with some requests.
struct FilledFile {
    FilledFile(const std::string& name, int requests) : path((root / (name + ".sqlite")).string()) {
        // A benchmark runs several times to find its number of iterations.
        for (const char* part : {"", "-wal", "-shm"}) {
            fs::remove(path + part);
        }
        { const CoreDataCorvantaStore makesTheTables(URL::fromFilePath(path)); }
        BareDatabase bare(path);
        bare.run("BEGIN");
        for (int number = 0; number < requests; ++number) {
            const LocalVideoRequest request = makeRequest();
            ids.push_back(request.id);
            insert(bare, number + 1, request);
        }
        bare.run("COMMIT");
    }

    std::string path;
    std::vector<UUID> ids;
};

void insertByStore(benchmark::State& state) {
    const FilledFile file("insert-store", 0);
    CoreDataCorvantaStore store(URL::fromFilePath(file.path));
    for (auto _ : state) {
        store.insert(makeRequest());
    }
}

void insertByHand(benchmark::State& state) {
    const FilledFile file("insert-hand", 0);
    BareDatabase bare(file.path);
    std::int64_t key = 1;
    for (auto _ : state) {
        const LocalVideoRequest request = makeRequest();
        bare.run("BEGIN IMMEDIATE");
        insert(bare, key++, request);
        bare.run("COMMIT");
    }
}

void updateByStore(benchmark::State& state) {
    const FilledFile file("update-store", streamedRequests);
    CoreDataCorvantaStore store(URL::fromFilePath(file.path));
    std::size_t turn = 0;
    for (auto _ : state) {
        const UUID& id = file.ids[turn++ % file.ids.size()];
        store.updateRequest(id, {{UpdateRequestData::Field::processId(std::to_string(turn))}});
    }
}

void updateByHand(benchmark::State& state) {
    const FilledFile file("update-hand", streamedRequests);
    BareDatabase bare(file.path);
    std::size_t turn = 0;
    for (auto _ : state) {
        bare.run("BEGIN IMMEDIATE");
        sqlite3_stmt* update =
            bare.statement("UPDATE ManagedVideoRequest SET processId = ?, updatedAt = ? WHERE id = ?");
        const UUID& id = file.ids[turn++ % file.ids.size()];
        BareDatabase::bind(update, 1, std::to_string(turn));
        sqlite3_bind_int64(update, 2, nanoseconds(std::chrono::system_clock::now()));
        BareDatabase::bind(update, 3, uuidString(id));
        bare.finish(update);
        bare.run("COMMIT");
    }
}

const FilledFile& listedFile() {
    static const FilledFile file("list", manyRequests);
    return file;
}

void listByStore(benchmark::State& state) {
    CoreDataCorvantaStore store(URL::fromFilePath(listedFile().path));
    for (auto _ : state) {
        if (store.getRequests(LocalVideoRequest::Status::idle).size() != manyRequests) {
            state.SkipWithError("The list isn't whole.");
        }
    }
}

// The columns as SQLite gives them, in memory of the program.
struct BareRow {
    std::int64_t key, status, createdAt, updatedAt;
    std::string id, outputPath, outputBookmark, type, rawData, processId, error;
    struct File {
        std::int64_t index;
        std::string path, bookmark;
    };
    std::vector<File> files;
};

std::string text(sqlite3_stmt* row, int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
    return bytes == nullptr ? std::string()
                            : std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
}

void listByHand(benchmark::State& state) {
    BareDatabase bare(listedFile().path);
    for (auto _ : state) {
        sqlite3_stmt* row = bare.statement(
            "SELECT r.primaryKey, r.id, r.status, r.outputPath, r.outputBookmark, r.type, r.rawData, "
            "r.processId, r.error, r.createdAt, r.updatedAt, f.\"index\", f.path, f.pathBookmark "
            "FROM ManagedVideoRequest r LEFT JOIN ManagedVideoRequestInputFile f ON f.request = r.primaryKey "
            "WHERE r.status = 4 ORDER BY r.primaryKey, f.\"index\"");
        std::vector<BareRow> rows;
        while (sqlite3_step(row) == SQLITE_ROW) {
            const std::int64_t key = sqlite3_column_int64(row, 0);
            if (rows.empty() || rows.back().key != key) {
                rows.push_back({key,
                                sqlite3_column_int64(row, 2),
                                sqlite3_column_int64(row, 9),
                                sqlite3_column_int64(row, 10),
                                text(row, 1),
                                text(row, 3),
                                text(row, 4),
                                text(row, 5),
                                text(row, 6),
                                text(row, 7),
                                text(row, 8),
                                {}});
            }
            rows.back().files.push_back({sqlite3_column_int64(row, 11), text(row, 12), text(row, 13)});
        }
        sqlite3_reset(row);
        if (rows.size() != manyRequests) {
            state.SkipWithError("The list isn't whole.");
        }
    }
}

void commitWithListStream(benchmark::State& state) {
    const FilledFile file("stream", streamedRequests);
    CoreDataCorvantaStore store(URL::fromFilePath(file.path));
    std::size_t lists = 0;
    const auto subscription = store.streamVideos().subscribe([&](const auto&) { ++lists; });
    std::size_t turn = 0;
    for (auto _ : state) {
        const UUID& id = file.ids[turn++ % file.ids.size()];
        store.updateRequest(id, {{UpdateRequestData::Field::processId(std::to_string(turn))}});
    }
    if (lists != turn + 1) {
        state.SkipWithError("A commit gave no list.");
    }
}

BENCHMARK(insertByHand)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(insertByStore)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(updateByHand)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(updateByStore)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(listByHand)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(listByStore)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(commitWithListStream)->Unit(benchmark::kMillisecond)->UseRealTime();

// Prints the usual table, and keeps the shortest times of each benchmark.
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                const Times times{run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
                Times& best = best_.try_emplace(run.run_name.function_name, times).first->second;
                best = {std::min(best.real, times.real), std::min(best.processor, times.processor)};
            }
        }
    }

    void printRatios() const {
        for (const auto& [what, goal] : {std::pair{"insert", 1.3}, {"update", 1.3}, {"list", 1.5}}) {
            const auto store = best_.find(what + std::string("ByStore"));
            const auto hand = best_.find(what + std::string("ByHand"));
            if (store != best_.end() && hand != best_.end()) {
                std::printf(
                    "%s: %.2f times the bare statements, %.2f in processor time (goal: at most %.1f)\n", what,
                    store->second.real / hand->second.real, store->second.processor / hand->second.processor,
                    goal);
            }
        }
        if (const auto commit = best_.find("commitWithListStream"); commit != best_.end()) {
            std::printf("commit with a list stream over %d requests: %.2f ms, %.2f in processor time "
                        "(goal: under 10)\n",
                        streamedRequests, commit->second.real, commit->second.processor);
        }
    }

  private:
    struct Times {
        double real;
        double processor;
    };

    std::map<std::string, Times> best_;
};

} // namespace
} // namespace corvanta

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    corvanta::SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<corvanta::Silence>());
    corvanta::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    std::filesystem::remove_all(corvanta::root);
    return 0;
}
