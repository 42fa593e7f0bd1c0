#include "StoredRecords.hpp"

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <support/FailingVFS.hpp>
#include <support/Patience.hpp>
#include <support/UserFolders.hpp>

#include <barrier>
#include <condition_variable>
#include <future>

namespace corvanta::test {
namespace {

using ::testing::ElementsAre;

// What an observer hears on a store's own thread.
template <typename Value>
class Heard {
  public:
    std::function<void(const Value&)> observer() {
        return [this](const Value& value) {
            const std::lock_guard lock(mutex_);
            values_.push_back(value);
            changed_.notify_all();
        };
    }

    std::vector<Value> waitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        EXPECT_TRUE(changed_.wait_for(lock, test::patience, [&] { return values_.size() >= count; }));
        return values_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Value> values_;
};

// Several stores on one file. Each is another process to the others.
class SharedStoreTest : public ::testing::Test {
  protected:
    using Others = CoreDataCorvantaStore::Others;

    std::unique_ptr<CoreDataCorvantaStore> open(Others others = Others::unheard) const {
        return std::make_unique<CoreDataCorvantaStore>(URL::fromFilePath(folders_.file("store.sqlite")),
                                                       others);
    }
    static void update(CoreDataCorvantaStore& store, const LocalVideoRequest& record, Status status) {
        store.updateRequest(record.id, {{Field::status(status)}});
    }
    static std::vector<Status> statuses(CoreDataCorvantaStore& store, const List& records) {
        std::vector<Status> all;
        for (const LocalVideoRequest& record : records) {
            all.push_back(store.getRequest(record.id).value().status);
        }
        return all;
    }

    const UserFolders folders_{UserFolders::memory()};
};

TEST_F(SharedStoreTest, EachSeesAndHearsWhatTheOthersCommit) {
    const auto here = open(Others::heard);
    const auto there = open();
    const LocalVideoRequest first = makeRecord();
    const LocalVideoRequest second = makeRecord();
    here->insert(first);
    there->insert(second);
    EXPECT_THAT(here->getRequests(Status::idle), ElementsAre(first, second));

    Heard<List> lists;
    Heard<LocalVideoRequest> rows;
    const auto list = here->streamVideos(CorvantaSdkVideoRequestStatus::error).subscribe(lists.observer());
    const auto row = here->streamVideo(second.id).subscribe(rows.observer());
    update(*there, first, Status::error);
    EXPECT_EQ(lists.waitFor(1).back(), there->getRequests(Status::error));
    update(*there, second, Status::error);
    EXPECT_EQ(lists.waitFor(2).back(), there->getRequests(Status::error));
    rows.waitFor(2);
    there->deleteRequest(second.id);
    lists.waitFor(3);
    // Its number may go to another row, which is not the one that was asked for.
    there->insert(makeRecord(Status::error));
    EXPECT_EQ(lists.waitFor(4).back(), there->getRequests(Status::error));
    const List told = rows.waitFor(2);
    ASSERT_EQ(told.size(), 2U) << "The changes of other rows, and the deletion, are not told.";
    EXPECT_EQ(told.front(), second);
    EXPECT_EQ(told.back().status, Status::error);
}

TEST_F(SharedStoreTest, IsMadeByAllWhoOpenItAtOnce) {
    constexpr int openers = 6;
    for (int round = 0; round < 40; ++round) {
        const URL file = URL::fromFilePath(folders_.file("new" + std::to_string(round)));
        std::barrier start(openers);
        std::vector<std::future<std::size_t>> opened;
        for (int opener = 0; opener < openers; ++opener) {
            opened.push_back(std::async(std::launch::async, [&] {
                start.arrive_and_wait();
                CoreDataCorvantaStore store(file, Others::unheard);
                store.insert(makeRecord());
                return store.getRequests(Status::idle).size();
            }));
        }
        std::size_t seen = 0;
        for (auto& one : opened) {
            EXPECT_NO_THROW(seen = std::max(seen, one.get())) << round;
        }
        EXPECT_EQ(seen, openers);
    }
}

TEST_F(SharedStoreTest, RunningRowsBelongToWhoRunsThem) {
    const List records = {makeRecord(), makeRecord(), makeRecord(Status::processing), makeRecord()};
    const auto here = open(Others::heard);
    auto there = open();
    for (const LocalVideoRequest& record : records) {
        here->insert(record);
    }
    update(*here, records[0], Status::processing);
    update(*there, records[1], Status::processing);
    const auto before = here->getRequest(records[1].id).value();
    for (const auto& asks : {std::pair(here.get(), 1), {there.get(), 0}}) {
        EXPECT_FALSE(asks.first->isRunElsewhere(records[2].id));
        EXPECT_FALSE(asks.first->isRunElsewhere(records[3].id));
        EXPECT_FALSE(asks.first->isRunElsewhere(records[asks.second == 0 ? 1 : 0].id));
        EXPECT_TRUE(asks.first->isRunElsewhere(records[static_cast<std::size_t>(asks.second)].id));
    }
    open()->resetPendingRequests();
    EXPECT_THAT(statuses(*here, records),
                ElementsAre(Status::processing, Status::processing, Status::cancelled, Status::idle))
        << "Nobody ran the third.";

    // Who listens sees to the rows of those that go.
    Heard<LocalVideoRequest> rows;
    const auto row = here->streamVideo(records[1].id).subscribe(rows.observer());
    there.reset();
    EXPECT_EQ(rows.waitFor(2).back().status, Status::cancelled);
    EXPECT_EQ(rows.waitFor(2).back().updatedAt, before.updatedAt);
    EXPECT_EQ(statuses(*here, records).front(), Status::processing);
    here->resetPendingRequests();
    EXPECT_EQ(statuses(*here, records).front(), Status::cancelled)
        << "A start knows nothing of a run of its own.";
}

TEST_F(SharedStoreTest, ACancelReachesWhoRuns) {
    const auto here = open(Others::heard);
    const auto there = open();
    const LocalVideoRequest run = makeRecord();
    here->insert(run);
    update(*here, run, Status::processing);
    Heard<LocalVideoRequest> cancels;
    const auto subscription = here->observeCancelElsewhere(
        run.id, [&, heard = cancels.observer()] { heard(here->getRequest(run.id).value()); });
    update(*here, run, Status::cancelled);
    update(*here, run, Status::processing);
    there->updateRequest(run.id, {{Field::processId("1")}});
    there->updateRequest(run.id, {{Field::status(Status::cancelled), Field::error("elsewhere")}});
    EXPECT_EQ(cancels.waitFor(1).front().error, "elsewhere") << "Not for a cancel of its own.";
}

TEST_F(SharedStoreTest, ChangesThatWaitForTheDiskMeetThoseOfOthers) {
    FailingVFS disk;
    const auto here = open();
    const auto there = open();
    const LocalVideoRequest pending = makeRecord();
    const List others = {makeRecord(), makeRecord()};
    disk.failAt(1, SQLITE_FULL, FailingVFS::Length::lasting);
    EXPECT_ANY_THROW(here->insert(pending));
    EXPECT_ANY_THROW(here->updateRequest(pending.id, {{Field::error("waits")}}));
    disk.heal();
    for (const LocalVideoRequest& record : others) {
        there->insert(record);
    }
    EXPECT_EQ(allRecords(*here).size(), 3U);
    update(*here, others[0], Status::completed);
    EXPECT_EQ(allRecords(*there), allRecords(*here));
    EXPECT_EQ(there->getRequest(pending.id).value().error, "waits");
    EXPECT_EQ(there->getRequest(others[0].id).value().error, std::nullopt);
    EXPECT_THAT(there->getRequests(Status::idle), testing::Contains(others[1]));
}

} // namespace
} // namespace corvanta::test
