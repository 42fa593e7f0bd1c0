#include "StoredRecords.hpp"

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>
#include <platform/Directories.hpp>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include <support/Failure.hpp>
#include <support/RecordedLog.hpp>
#include <support/UserFolders.hpp>

#include <fstream>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

class CoreDataCorvantaStoreTest : public ::testing::Test {
  protected:
    CoreDataCorvantaStore open() { return CoreDataCorvantaStore(URL::fromFilePath(path)); }

    // One row as text, the columns parted by "|".
    std::vector<std::string> query(const std::string& sql) {
        SQLite::Database database(path);
        SQLite::Statement statement(database, sql);
        std::vector<std::string> rows;
        while (statement.executeStep()) {
            std::string row;
            for (int column = 0; column < statement.getColumnCount(); ++column) {
                row += (column > 0 ? "|" : "") + statement.getColumn(column).getString();
            }
            rows.push_back(row);
        }
        return rows;
    }
    void execute(const std::string& sql) { SQLite::Database(path, SQLite::OPEN_READWRITE).exec(sql); }

    UserFolders folders;
    std::string path = folders.file("video-store.sqlite");
};

TEST_F(CoreDataCorvantaStoreTest, KeepsRequestsInTablesThatAPersonCanRead) {
    LocalVideoRequest record = makeRecord(Status::processing);
    record.id = parseUUID("ABCDEF01-2345-4678-9ABC-DEF012345678").value();
    record.rawData = "{}";
    record.outputPath = URL::fromFilePath("/videos/my film.mp4");
    record.output = CorvantaSdkVideoFileDescriptor::custom("/videos/my film");
    record.createdAt = LocalVideoRequest::Date(std::chrono::nanoseconds(1'700'000'000'123'456'789));
    open().insert(record);
    {
        CoreDataCorvantaStore again = open();
        EXPECT_EQ(again.getRequest(record.id), record);
        again.updateRequest(record.id,
                            {{Field::error("e"), Field::processId("7"), Field::status(Status::error)}});
    }
    EXPECT_THAT(
        query("SELECT id, status, outputPath, outputBookmark, type, rawData, processId, error, createdAt,"
              " datetime(createdAt / 1000000000, 'unixepoch') FROM ManagedVideoRequest"),
        ElementsAre("abcdef01-2345-4678-9abc-def012345678|1|file:///videos/my%20film.mp4||concat|{}|7|e|"
                    "1700000000123456789|2023-11-14 22:13:20"));
    EXPECT_THAT(
        query(R"(SELECT f.path, f."index", f.pathBookmark, r.status FROM ManagedVideoRequestInputFile f
                         JOIN ManagedVideoRequest r ON r.primaryKey = f.request)"),
        ElementsAre(record.inputFiles[0].path.absoluteString() + "|0||1",
                    record.inputFiles[1].path.absoluteString() + "|1||1"));
    EXPECT_THAT(query("PRAGMA user_version"), ElementsAre("2"));
    EXPECT_THAT(query("PRAGMA journal_mode"), ElementsAre("wal"));
    EXPECT_THAT(query("SELECT name FROM sqlite_schema WHERE type = 'index' AND sql NOT NULL"),
                ElementsAre("ManagedVideoRequest_id", "ManagedVideoRequest_status"));
    open().deleteRequest(record.id);
    EXPECT_THAT(query("SELECT count(*) FROM ManagedVideoRequestInputFile"), ElementsAre("0"));
}

TEST_F(CoreDataCorvantaStoreTest, LeavesOutRowsThatAreNoRequests) {
    CoreDataCorvantaStore store = open();
    const LocalVideoRequest good = makeRecord();
    store.insert(good);
    const char* damages[] = {"status = 5",     "status = -1",      "status = 4294967296",
                             "type = 'Merge'", "id = 'not an id'", "id = replace(id, '-', '_')",
                             "outputPath = ''"};
    int key = 1;
    for (const std::string damage : damages) {
        SCOPED_TRACE(damage);
        const LocalVideoRequest bad = makeRecord(Status::idle);
        store.insert(bad);
        auto stream = store.streamVideo(bad.id);
        execute("UPDATE ManagedVideoRequest SET " + damage + " WHERE primaryKey = " + std::to_string(++key));
        EXPECT_EQ(store.getRequest(bad.id), std::nullopt);
        EXPECT_EQ(allRecords(store), List{good});
        std::vector<List> heard;
        const auto row = stream.subscribe([&](const auto& record) { heard.push_back({record}); });
        const auto rows = store.streamVideos().subscribe([&](const List& list) { heard.push_back(list); });
        store.updateRequest(bad.id, {{Field::error("still bad")}});
        EXPECT_THAT(heard, ElementsAre(List{good})) << "The list's first value alone.";
        store.deleteRequest(bad.id);
    }
    const LocalVideoRequest bad = makeRecord();
    store.insert(bad);
    execute("UPDATE ManagedVideoRequestInputFile SET path = '' WHERE \"index\" = 1 AND request = " +
            std::to_string(++key));
    EXPECT_EQ(allRecords(store), List{good});
    EXPECT_THAT(query("SELECT count(*) FROM ManagedVideoRequest WHERE id = 'not an id'"), ElementsAre("1"))
        << "A bad row is left as it is; those with an unreadable id can't be deleted.";
    execute("UPDATE ManagedVideoRequestInputFile SET pathBookmark = x'00ff', path = 'file:///still%20read'");
    EXPECT_EQ(store.getRequest(good.id).value().inputFiles.at(1).path.path(), "/still read");
}

TEST_F(CoreDataCorvantaStoreTest, FollowsFilesThatMove) {
    CoreDataCorvantaStore store = open();
    LocalVideoRequest record = makeRecord(Status::idle, 0);
    record.outputPath = URL::fromFilePath(folders.make("out.mp4"));
    record.output = storedOutput(record.outputPath);
    const auto inputs = {folders.make("bare.mp4"), folders.make("moved.mp4"), folders.make("deleted.mp4"),
                         folders.make("replaced.mp4"), folders.file("absent.mp4")};
    for (const std::string& input : inputs) {
        record.inputFiles.push_back({URL::fromFilePath(input), static_cast<int>(record.inputFiles.size())});
    }
    record.inputFiles[0].path = URL::parse(folders.file("bare.mp4")).value();
    store.insert(record);
    EXPECT_EQ(store.getRequest(record.id), record) << "Unmoved files read as they were inserted.";

    const std::string home = Directories::documents().path();
    fs::rename(folders.file("out.mp4"), home + "/out #1.mp4");
    fs::rename(folders.file("moved.mp4"), folders.file("renamed.mp4"));
    fs::remove(folders.file("deleted.mp4"));
    fs::rename(folders.make("new.mp4"), folders.file("replaced.mp4"));
    LocalVideoRequest expected = record;
    expected.outputPath = URL::fromFilePath(home + "/out #1.mp4");
    expected.inputFiles[1].path = URL::fromFilePath(folders.file("renamed.mp4"));
    EXPECT_EQ(store.getRequest(record.id), expected) << "The output keeps the old path.";
    EXPECT_THAT(store.getRequests(Status::idle), ElementsAre(expected));
    EXPECT_THAT(query("SELECT outputPath FROM ManagedVideoRequest"),
                ElementsAre(record.outputPath.absoluteString()));

    // A run writes another file than the one that was there at the insertion.
    folders.make("out.mp4");
    store.updateRequest(record.id, {{Field::status(Status::completed)}});
    EXPECT_EQ(store.getRequest(record.id).value().outputPath, record.outputPath);
    fs::rename(folders.file("out.mp4"), folders.file("kept.mp4"));
    EXPECT_EQ(store.getRequest(record.id).value().outputPath.path(), folders.file("kept.mp4"));
    store.updateRequest(record.id, {{Field::status(Status::completed)}});
    EXPECT_EQ(store.getRequest(record.id).value().outputPath.path(), folders.file("kept.mp4"))
        << "With no file at its place, the one that is known stays known.";
}

TEST_F(CoreDataCorvantaStoreTest, OpensWhatItsFirstVersionKept) {
    fs::copy_file(std::string(KEPT_STORES) + "/version1.sqlite", path);
    const auto rows = [this] {
        return query("SELECT primaryKey, id, status, outputPath, type, ifnull(rawData, '-'), "
                     "ifnull(processId, '-'), ifnull(error, '-'), createdAt, ifnull(owner, '-'), "
                     "(SELECT group_concat(path || (pathBookmark IS NULL), ',') FROM "
                     "ManagedVideoRequestInputFile WHERE request = primaryKey) FROM ManagedVideoRequest");
    };
    const std::string data = R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})";
    const std::string first = "file:///tmp/videos/kept%20input.mp40";
    const std::string both = first + ",file:///nowhere/b.mp41";
    const auto row = [](const std::string& number, const std::string& status, const std::string& rest) {
        return number + "|00000000-0000-4000-8000-00000000000" + number + "|" + status +
               "|file:///nowhere/film%20" + number + ".mp4|" + rest;
    };
    const std::vector<std::string> kept = {
        row("1", "0", "concat|-|7|-|1700000000000000001|-|" + both),
        row("2", "1", "merge|" + data + "|-|broken|1700000000000000002|-|" + both),
        row("3", "2", "encode|" + data + "|-|-|1700000000000000003|-|" + first),
        row("4", "3", "concat|-|-|-|1700000000000000004|-|" + both),
        row("5", "4", "merge|" + data + "|-|-|1700000000000000005|-|" + both),
    };
    {
        CoreDataCorvantaStore store = open();
        EXPECT_EQ(rows(), kept);
        EXPECT_EQ(allRecords(store).size(), kept.size());
        EXPECT_EQ(store.getRequests(Status::error).at(0).inputFiles.at(0).path.path(),
                  "/tmp/videos/kept input.mp4");
        store.resetPendingRequests();
        EXPECT_EQ(store.getRequests(Status::cancelled).size(), 2U);
    }
    CoreDataCorvantaStore again = open();
    again.insert(makeRecord());
    EXPECT_EQ(allRecords(again).size(), 6U);
    EXPECT_THAT(query("PRAGMA user_version"), ElementsAre("2"));
}

TEST_F(CoreDataCorvantaStoreTest, RefusesFilesThatAreNotItsOwnAndLeavesThemAlone) {
    // Each with the reason that the log tells.
    const std::pair<std::function<void()>, std::string> files[] = {
        {[&] { std::ofstream(path) << std::string(5000, 'x'); }, "file is not a database"},
        {[&] { fs::create_directory(path); }, "unable to open database file (Is a directory)"},
        {[&] { fs::create_symlink("/no/such/folder/store", path); },
         "unable to open database file (No such file or directory)"},
        {[&] {
             SQLite::Database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("CREATE TABLE a (b)");
         },
         "The file belongs to another program."},
        {[&] {
             open().insert(makeRecord());
             execute("PRAGMA user_version = 3");
         },
         "The file is of version 3, newer than 2, the newest that is known."},
        {[&] {
             open().insert(makeRecord());
             execute("ALTER TABLE ManagedVideoRequest DROP COLUMN rawData");
         },
         "no such column: rawData"},
        {[&] {
             open();
             execute("DROP TABLE ManagedVideoRequestInputFile");
         },
         "no such table: ManagedVideoRequestInputFile"},
        {[&] {
             fs::copy_file(std::string(KEPT_STORES) + "/version1.sqlite", path);
             execute("DROP TABLE ManagedVideoRequestInputFile");
         },
         "no such table: ManagedVideoRequestInputFile"},
    };
    const auto contents = [&]() -> std::string {
        std::ifstream file(path, std::ios::binary);
        return fs::is_directory(path) ? "" : std::string(std::istreambuf_iterator<char>(file), {});
    };
    int number = 0;
    RecordedLog log;
    const auto expectRefusal = [&](const URL& url, const std::string& reason) {
        log.take();
        EXPECT_EQ(failureOf([&] { CoreDataCorvantaStore store(url); }), "failedToLoadPersistentContainer");
        EXPECT_THAT(log.take(),
                    ElementsAre("error event_video_init: Open store failed. " + url.path() + ": " + reason));
    };
    for (const auto& [make, reason] : files) {
        SCOPED_TRACE(number);
        path = folders.file(std::to_string(number++) + ".sqlite");
        make();
        const std::string before = contents();
        expectRefusal(URL::fromFilePath(path), reason);
        EXPECT_EQ(contents(), before);
    }
    // A folder that nobody can write to, root included, and no file at all.
    for (const auto& [nowhere, reason] :
         {std::pair("file:///proc/store.sqlite", "unable to open database file (No such file or directory)"),
          {"file:///", "unable to open database file (Is a directory)"},
          {"file:///a%00b", "The store's URL names no file."}}) {
        SCOPED_TRACE(nowhere);
        expectRefusal(URL::parse(nowhere).value(), reason);
    }
}

TEST_F(CoreDataCorvantaStoreTest, HoldsAsManyInputsAsTheirNumbersAllow) {
    CoreDataCorvantaStore store = open();
    LocalVideoRequest record = makeRecord(Status::idle, 32'767);
    store.insert(record);
    EXPECT_EQ(store.getRequest(record.id), record);
    record.inputFiles.push_back(record.inputFiles.front());
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(store.insert(record), "Fatal error: .*32,768 input files or more");
    EXPECT_EQ(allRecords(store).size(), 1U);
}

TEST_F(CoreDataCorvantaStoreTest, StreamsOutliveTheirStore) {
    std::optional<CoreDataCorvantaStore> store(std::in_place, URL::fromFilePath(path));
    const LocalVideoRequest record = makeRecord();
    store->insert(record);
    const auto list = store->streamVideos();
    const auto row = store->streamVideo(record.id);
    store.reset();
    List heard;
    const auto first = list.subscribe([&](const List& values) { heard = values; });
    EXPECT_THAT(heard, ElementsAre(record));
    const auto second = row.subscribe([&](const LocalVideoRequest& value) { heard.push_back(value); });
    EXPECT_THAT(heard, ElementsAre(record, record));
}

} // namespace
} // namespace corvanta::test
