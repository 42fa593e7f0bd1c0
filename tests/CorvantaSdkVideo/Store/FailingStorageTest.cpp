#include "StoredRecords.hpp"

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <sqlite3.h>

#include <support/FailingVFS.hpp>
#include <support/UserFolders.hpp>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;

// What another process would find if this one died now.
List foundAfterDeath(const UserFolders& folders) {
    const fs::path grave = folders.folder() / "grave";
    fs::remove_all(grave);
    fs::create_directory(grave);
    for (const char* part : {"store.sqlite", "store.sqlite-wal"}) {
        fs::copy_file(folders.folder() / part, grave / part);
    }
    CoreDataCorvantaStore store(URL::fromFilePath((grave / "store.sqlite").string()));
    SQLite::Database database((grave / "store.sqlite").string());
    EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
    EXPECT_EQ(database
                  .execAndGet("SELECT count(*) FROM ManagedVideoRequestInputFile WHERE request NOT IN "
                              "(SELECT primaryKey FROM ManagedVideoRequest)")
                  .getInt(),
              0);
    return allRecords(store);
}

struct Failure {
    int resultCode;
    FailingVFS::Length length;

    /// Names the case in the list of tests.
    friend void PrintTo(const Failure& failure, std::ostream* out) {
        *out << failure.resultCode << (failure.length == FailingVFS::Length::once ? " once" : " lasting");
    }
};

class FailingStorageTest : public ::testing::TestWithParam<Failure> {};

// Walks a short life of a store, with a failure at its n-th write, for each n. The store's own reads always
// show everything; the disk has all that returned, and everything after the next good commit.
TEST_P(FailingStorageTest, KeepsWhatReturnedAndBringsTheRestLater) {
    int failedCalls = 0;
    bool wasReached = true;
    for (int number = 1; wasReached; ++number) {
        SCOPED_TRACE("failure at write " + std::to_string(number));
        const UserFolders folders(UserFolders::memory());
        FailingVFS vfs;
        CoreDataCorvantaStore store(URL::fromFilePath(folders.file("store.sqlite")));
        const LocalVideoRequest kept = makeRecord(Status::processing);
        const LocalVideoRequest deleted = makeRecord(Status::completed, 10);
        const LocalVideoRequest added = makeRecord(Status::idle, 60);
        const LocalVideoRequest last = makeRecord();
        store.insert(kept);
        store.insert(deleted);
        int notices = 0;
        const auto subscription = store.streamVideos().subscribe([&](const List& list) {
            ++notices;
            EXPECT_EQ(sorted(list), allRecords(store));
        });

        const std::pair<std::function<void()>, std::function<void(List&)>> steps[] = {
            {[&] { store.insert(added); }, [&](List& all) { all.push_back(added); }},
            {[&] {
                 store.updateRequest(kept.id, {{Field::error("e"), Field::status(Status::error)}});
             },
             [](List& all) {
                 all[0].error = "e";
                 all[0].status = Status::error;
             }},
            {[&] { store.deleteRequest(deleted.id); }, [](List& all) { all.erase(all.begin() + 1); }},
            {[&] { store.updateRequest(added.id, {{Field::status(Status::processing)}}); },
             [](List& all) { all[1].status = Status::processing; }},
            {[&] { store.resetPendingRequests(); }, [](List& all) { all[1].status = Status::cancelled; }},
        };
        List expected = {kept, deleted};
        // What may be on disk: the last good commit, or one whose failure came when all was written.
        std::vector<List> onDisk = {sorted(expected)};
        const auto checkReads = [&] {
            // The dates of updates are the store's.
            for (LocalVideoRequest& record : expected) {
                record.updatedAt = store.getRequest(record.id).value().updatedAt;
            }
            ASSERT_EQ(allRecords(store), sorted(expected));
        };

        vfs.failAt(number, GetParam().resultCode, GetParam().length);
        for (const auto& [act, mirror] : steps) {
            const int failuresBefore = vfs.failures();
            const int noticesBefore = notices;
            bool returned = true;
            try {
                act();
            } catch (const SQLite::Exception& error) {
                returned = false;
                ++failedCalls;
                EXPECT_EQ(error.getErrorCode(), GetParam().resultCode & 0xff) << error.what();
                EXPECT_GT(vfs.failures(), failuresBefore);
            }
            mirror(expected);
            ASSERT_NO_FATAL_FAILURE(checkReads());
            const bool isReset = &act == &steps[4].first;
            if (returned && !(isReset && vfs.failures() > failuresBefore)) {
                onDisk.clear();
            }
            onDisk.push_back(sorted(expected));
            EXPECT_EQ(notices > noticesBefore, onDisk.size() == 1);
            EXPECT_THAT(foundAfterDeath(folders), testing::AnyOfArray(onDisk));
        }
        wasReached = vfs.failures() > 0;

        vfs.heal();
        store.insert(last);
        expected.push_back(last);
        ASSERT_NO_FATAL_FAILURE(checkReads());
        EXPECT_EQ(foundAfterDeath(folders), sorted(expected));
    }
    EXPECT_GT(failedCalls, 10) << "The failures have to be met.";
}

INSTANTIATE_TEST_SUITE_P(DiskFullAndIOErrors, FailingStorageTest,
                         ::testing::Values(Failure{SQLITE_FULL, FailingVFS::Length::once},
                                           Failure{SQLITE_FULL, FailingVFS::Length::lasting},
                                           Failure{SQLITE_IOERR_WRITE, FailingVFS::Length::once},
                                           Failure{SQLITE_IOERR_FSYNC, FailingVFS::Length::lasting}));

TEST(FailingOpeningTest, GivesTheStoreOrItsError) {
    int failed = 0;
    bool wasReached = true;
    for (int number = 1; wasReached; ++number) {
        SCOPED_TRACE("failure at write " + std::to_string(number));
        const UserFolders folders(UserFolders::memory());
        FailingVFS vfs;
        const URL url = URL::fromFilePath(folders.file("store.sqlite"));
        vfs.failAt(number, SQLITE_FULL, FailingVFS::Length::lasting);
        try {
            CoreDataCorvantaStore store(url);
        } catch (const CoreDataCorvantaStore::Error& error) {
            EXPECT_EQ(error.kind(), CoreDataCorvantaStore::Error::Case::failedToLoadPersistentContainer);
            ++failed;
        }
        wasReached = vfs.failures() > 0;
        vfs.heal();
        CoreDataCorvantaStore store(url);
        const LocalVideoRequest record = makeRecord();
        store.insert(record);
        EXPECT_EQ(allRecords(store), List{record}) << "A failed opening must not spoil the file.";
    }
    EXPECT_GT(failed, 3);
}

} // namespace
} // namespace corvanta::test
