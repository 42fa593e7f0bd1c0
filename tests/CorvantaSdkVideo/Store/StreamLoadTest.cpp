#include "StoredRecords.hpp"

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>

#include <gtest/gtest.h>

#include <support/UserFolders.hpp>

#include <deque>
#include <random>
#include <thread>

namespace corvanta::test {
namespace {

using PublicStatus = CorvantaSdkVideoRequestStatus;

#ifdef CORVANTA_LONG_FORM
constexpr int writesPerThread = 800;
#else
constexpr int writesPerThread = 60;
#endif
constexpr int writers = 8;
constexpr int subscribers = 4;
constexpr int streamsPerSubscriber = 4;

// Takes no lock, which would order the threads.
class Silence : public SharedCorvantaSdkLogSink {
    void addLog(const SharedCorvantaSdkLog&) override {}
};

// One subscription at a time to a stream of some kind, and the last value that it heard. The value is written
// within the store's scope only, and read where nothing is written any more.
class Listener {
  public:
    Listener(VideoStore& store, List ids) : store_(store), rows_(std::move(ids)) {}

    void subscribe(std::size_t choice) {
        cancel();
        const auto hear = [this](const List& list) {
            list_ = list;
            if (!list.empty()) {
                store_.getRequest(list.front().id);
            }
        };
        if (choice % 3 == 0) {
            subscription_ = store_.streamVideos().subscribe([hear](const List& list) { hear(sorted(list)); });
            table_ = [this] { return allRecords(store_); };
        } else if (choice % 3 == 1) {
            const auto status = static_cast<Status>(choice % 5);
            subscription_ = store_.streamVideos(static_cast<PublicStatus>(status)).subscribe(hear);
            table_ = [this, status] { return store_.getRequests(status); };
        } else {
            const UUID row = rows_[choice % rows_.size()].id;
            subscription_ = store_.streamVideo(row).subscribe([this](const LocalVideoRequest& record) {
                EXPECT_EQ(store_.getRequest(record.id), record);
                list_ = {record};
            });
            table_ = [this, row] { return List{store_.getRequest(row).value()}; };
        }
    }

    void cancel() {
        subscription_.cancel();
        // A value that came now would be a race, which the thread sanitizer sees.
        list_.clear();
    }

    void expectToHaveHeardTheTable() const { EXPECT_EQ(list_, table_()); }

  private:
    VideoStore& store_;
    List rows_;
    List list_;
    std::function<List()> table_;
    Subscription subscription_;
};

void writeAtRandom(VideoStore& store, const List& rows, unsigned seed) {
    std::mt19937 random(seed);
    List own;
    for (int write = 0; write < writesPerThread; ++write) {
        const auto status = static_cast<Status>(random() % 5);
        switch (random() % 8) {
        case 0:
            own.push_back(makeRecord(status));
            store.insert(own.back());
            break;
        case 1:
            if (!own.empty()) {
                store.deleteRequest(own.back().id);
                own.pop_back();
            }
            break;
        case 2:
            store.resetPendingRequests();
            break;
        default:
            store.updateRequest(rows[random() % rows.size()].id,
                                {{Field::status(status), Field::processId(std::to_string(write))}});
        }
    }
}

TEST(StreamLoadTest, StreamsEndWithTheTable) {
    SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<Silence>());
    const UserFolders folders(UserFolders::memory());
    CoreDataCorvantaStore store(URL::fromFilePath(folders.file("store.sqlite")));
    List rows;
    for (int row = 0; row < 20; ++row) {
        rows.push_back(makeRecord());
        store.insert(rows.back());
    }
    std::atomic<int> writing = writers;
    std::vector<std::thread> threads;
    for (unsigned writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&, writer] {
            writeAtRandom(store, rows, writer);
            --writing;
        });
    }
    std::deque<Listener> listeners;
    for (int number = 0; number < subscribers * streamsPerSubscriber; ++number) {
        listeners.emplace_back(store, rows);
    }
    for (unsigned subscriber = 0; subscriber < subscribers; ++subscriber) {
        threads.emplace_back([&, subscriber] {
            std::mt19937 random(100 + subscriber);
            const auto own = listeners.begin() + subscriber * streamsPerSubscriber;
            for (int turn = 0; writing > 0 || turn < 4; ++turn) {
                Listener& listener = own[random() % streamsPerSubscriber];
                listener.cancel();
                listener.subscribe(random());
            }
            for (unsigned stream = 0; stream < streamsPerSubscriber; ++stream) {
                own[stream].subscribe(random());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    // A list that was read before it was subscribed to is made good by the next commit.
    store.updateRequest(rows.front().id, {{Field::error("last")}});
    for (const Listener& listener : listeners) {
        listener.expectToHaveHeardTheTable();
    }
}

} // namespace
} // namespace corvanta::test
