#include "StoredRecords.hpp"

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include <gmock/gmock.h>

#include <support/RecordedLog.hpp>
#include <support/UserFolders.hpp>

#include <thread>
#include <unordered_set>

namespace corvanta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using PublicStatus = CorvantaSdkVideoRequestStatus;

// What every `VideoStore` promises.
class VideoStoreContractTest : public ::testing::Test {
  protected:
    LocalVideoRequest inserted(Status status = Status::idle) {
        const LocalVideoRequest record = makeRecord(status);
        store.insert(record);
        return record;
    }
    void update(const LocalVideoRequest& record, decltype(UpdateRequestData::fields) fields) {
        store.updateRequest(record.id, {std::move(fields)});
    }

    const UserFolders folders_{UserFolders::memory()};
    CoreDataCorvantaStore persistent_{URL::fromFilePath(folders_.file("video-store.sqlite"))};
    VideoStore& store = persistent_;
};

TEST_F(VideoStoreContractTest, GivesBackWhatWasInserted) {
    using Change = std::function<void(LocalVideoRequest&)>;
    struct Case {
        const char* what;
        Change inserted;
        Change read = [](LocalVideoRequest&) {};
    };
    const auto stored = [](const URL& path, const std::string& output) {
        return Change([=](LocalVideoRequest& r) {
            r.outputPath = path;
            r.output = CorvantaSdkVideoFileDescriptor::custom(output);
        });
    };
    const auto at = [](const URL& path) { return Change([=](auto& r) { r.outputPath = path; }); };
    const URL bare = URL::parse("/v.d/name").value();
    const URL hidden = URL::parse("/v/.mp4").value();
    const URL odd = URL::fromFilePath("/v/50% #1? ü.mp4");
    const Case cases[] = {
        {"a plain record", [](LocalVideoRequest&) {}},
        {"an encode", [](auto& r) { r.type = LocalVideoRequest::OperationType::encode; }},
        {"a merge with odd texts",
         [](auto& r) {
             r.type = LocalVideoRequest::OperationType::merge;
             r.rawData = std::string("'; DROP TABLE x; -- \0 ünï \xff", 29);
         }},
        {"an empty text is not an absent one", [](auto& r) { r.rawData = ""; }},
        {"no inputs", [](auto& r) { r.inputFiles.clear(); }},
        {"dates before 1970 and to the nanosecond",
         [](auto& r) {
             r.createdAt = LocalVideoRequest::Date(std::chrono::nanoseconds(-123456789));
             r.updatedAt = LocalVideoRequest::Date(std::chrono::nanoseconds(1));
         }},
        {"error and processId are left out", [](auto& r) { r.error = r.processId = "7"; },
         [](auto& r) { r.error = r.processId = std::nullopt; }},
        {"indices are positions", [](auto& r) { r.inputFiles[0].index = 7; },
         [](auto& r) { r.inputFiles[0].index = 0; }},
        {"the output follows the path", stored(URL::fromFilePath("/videos/a.b.mp4"), "elsewhere"),
         stored(URL::fromFilePath("/videos/a.b.mp4"), "/videos/a.b")},
        {"a bare path, dots in folders alone", at(bare), stored(bare, "/v.d/name")},
        {"a hidden file's name is no extension", at(hidden), stored(hidden, "/v/.mp4")},
        {"an odd name is escaped", at(odd), stored(odd, "/v/50%25 %231%3F ü")},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(example.what);
        LocalVideoRequest record = makeRecord();
        example.inserted(record);
        store.insert(record);
        LocalVideoRequest expected = record;
        example.read(expected);
        EXPECT_EQ(store.getRequest(record.id), expected);
        EXPECT_THAT(store.getRequests(Status::idle), ::testing::Contains(expected));
    }
    EXPECT_EQ(store.getRequests(Status::idle).size(), std::size(cases));
    EXPECT_EQ(store.getRequest(makeUUID()), std::nullopt);
}

TEST_F(VideoStoreContractTest, UpdatesTheFieldsOfTheSetAlone) {
    const LocalVideoRequest other = inserted(Status::completed);
    LocalVideoRequest expected = inserted();
    const decltype(UpdateRequestData::fields) updates[] = {
        {},
        {Field::error("broken"), Field::processId("12"), Field::status(Status::processing)},
        {},
        {Field::status(Status::error)},
        {Field::error(std::nullopt)},
        {Field::processId(std::nullopt), Field::error("")},
        {Field::error(std::nullopt), Field::error(std::nullopt)},
    };
    for (const auto& fields : updates) {
        const auto before = std::chrono::system_clock::now();
        update(expected, fields);
        for (const Field& field : fields) {
            if (field == Field::status(Status::processing) || field == Field::status(Status::error)) {
                expected.status = field.newStatus();
            } else {
                (field.kind() == Field::Case::error ? expected.error : expected.processId) = field.text();
            }
        }
        const auto read = store.getRequest(expected.id).value();
        EXPECT_THAT(read.updatedAt,
                    ::testing::AllOf(::testing::Ge(before), ::testing::Le(std::chrono::system_clock::now())));
        EXPECT_NE(read, expected) << "Records that differ in updatedAt alone are not equal.";
        expected.updatedAt = read.updatedAt;
        EXPECT_EQ(read, expected);
    }
    store.updateRequest(makeUUID(), {{Field::status(Status::error)}});
    store.deleteRequest(makeUUID());
    EXPECT_EQ(allRecords(store), sorted({expected, other}));
    store.deleteRequest(expected.id);
    store.deleteRequest(expected.id);
    EXPECT_EQ(allRecords(store), List{other});
}

TEST_F(VideoStoreContractTest, ActsOnTheFirstOfEqualIds) {
    const LocalVideoRequest first = inserted();
    LocalVideoRequest second = first;
    second.rawData = "second";
    store.insert(second);
    update(first, {Field::status(Status::error)});
    EXPECT_THAT(store.getRequests(Status::idle), ElementsAre(second));
    EXPECT_EQ(store.getRequest(first.id).value().rawData, std::nullopt);
    store.deleteRequest(first.id);
    EXPECT_THAT(allRecords(store), ElementsAre(second));
}

TEST_F(VideoStoreContractTest, ResetsProcessingRowsInOneCommit) {
    List expected;
    for (const Status status : {Status::processing, Status::processing, Status::idle, Status::completed}) {
        expected.push_back(inserted(status));
    }
    int commits = 0;
    const auto subscription = store.streamVideos().subscribe([&](const List&) { ++commits; });
    for (int round = 0; round < 2; ++round) {
        store.resetPendingRequests();
        expected[0].status = expected[1].status = Status::cancelled;
        EXPECT_EQ(allRecords(store), sorted(expected));
        EXPECT_EQ(commits, 2) << "The first value and one change, and nothing for an idle reset.";
    }
}

TEST_F(VideoStoreContractTest, LogsThreeOperations) {
    RecordedLog log;
    const LocalVideoRequest record = inserted();
    update(record, {});
    store.getRequest(record.id);
    store.getRequests(Status::idle);
    store.resetPendingRequests();
    const auto stream = store.streamVideo(record.id);
    store.deleteRequest(record.id);
    const std::string id = uuidString(record.id);
    EXPECT_THAT(log.take(),
                ElementsAre("info event_video_request_insert: Insert called with video request: " + id,
                            "info event_video_request_update: Update called with video request: " + id,
                            "info event_video_request_get_by_id: Get called with id: " + id));
}

TEST_F(VideoStoreContractTest, ListStreamsGiveTheListOfTheirCreationAndThenEachOther) {
    std::vector<List> whole;
    std::vector<List> processing;
    auto emptyStream = store.streamVideos();
    auto emptyProcessing = store.streamVideos(PublicStatus::processing);
    const LocalVideoRequest first = inserted();
    auto subscription = emptyStream.subscribe([&](const List& list) { whole.push_back(list); });
    auto filtered = emptyProcessing.subscribe([&](const List& list) { processing.push_back(list); });
    EXPECT_THAT(whole, IsEmpty()) << "The list was empty at creation.";

    update(first, {});
    ASSERT_THAT(whole, SizeIs(1));
    EXPECT_EQ(whole[0], store.getRequests(Status::idle));
    EXPECT_THAT(processing, IsEmpty()) << "A commit outside the filtered list.";

    update(first, {Field::status(Status::processing)});
    update(first, {Field::processId("1")});
    update(first, {Field::status(Status::completed)});
    update(first, {Field::error("unseen by the filter")});
    EXPECT_THAT(whole, SizeIs(5));
    EXPECT_THAT(processing, ElementsAre(SizeIs(1), SizeIs(1), IsEmpty()));
    EXPECT_EQ(processing[1][0].processId, "1");

    store.deleteRequest(first.id);
    EXPECT_THAT(whole.back(), IsEmpty());
    subscription.cancel();
    inserted();
    EXPECT_THAT(whole, SizeIs(6));
}

TEST_F(VideoStoreContractTest, SubscribersOfOneListStreamShareItsMemory) {
    inserted();
    const auto stream = store.streamVideos();
    std::vector<std::string> heard;
    const auto listen = [&](const char* who) {
        return stream.subscribe(
            [&heard, who](const List& list) { heard.push_back(who + std::to_string(list.size())); });
    };
    auto first = listen("first");
    const auto second = listen("second");
    inserted();
    EXPECT_THAT(heard, ElementsAre("first1", "second1", "first2"));
    first.cancel();
    inserted();
    const auto late = listen("late");
    EXPECT_THAT(heard, ElementsAre("first1", "second1", "first2", "second3", "late1"));
}

TEST_F(VideoStoreContractTest, ARowStreamGivesEachUpdateAndIsSilentAfterDeletion) {
    const LocalVideoRequest record = inserted();
    const LocalVideoRequest other = inserted();
    const auto stream = store.streamVideo(record.id);
    update(record, {Field::error("before subscribing")});
    List heard;
    const auto subscription = stream.subscribe([&](const auto& request) { heard.push_back(request); });
    ASSERT_THAT(heard, SizeIs(1));
    EXPECT_EQ(heard[0].error, "before subscribing") << "Read at subscription, not at creation.";
    update(record, {Field::status(Status::processing)});
    update(other, {Field::status(Status::processing)});
    inserted();
    update(record, {Field::status(Status::processing)});
    store.resetPendingRequests();
    ASSERT_THAT(heard, SizeIs(4));
    EXPECT_EQ(heard[1].status, Status::processing);
    EXPECT_EQ(heard[3].status, Status::cancelled);
    store.deleteRequest(record.id);
    store.insert(record);
    update(record, {});
    EXPECT_THAT(heard, SizeIs(4)) << "A new row of the same id is another row.";
    try {
        store.streamVideo(makeUUID());
        FAIL() << "An unknown id has no stream.";
    } catch (const CoreDataCorvantaStore::Error& error) {
        EXPECT_EQ(localizedDescription(error),
                  "The operation couldn’t be completed. (CoreDataCorvantaStore.Error error 3.)");
    }
}

TEST_F(VideoStoreContractTest, ObserversRunInTheCommitAndMayUseTheStore) {
    const LocalVideoRequest record = inserted();
    std::vector<std::string> heard;
    std::optional<Subscription> own;
    std::optional<Subscription> added;
    // Reads in the notice, writes in the notice, ends itself and makes another.
    own = store.streamVideo(record.id).subscribe([&](const LocalVideoRequest& request) {
        EXPECT_EQ(store.getRequest(record.id), request);
        heard.push_back("row " + request.error.value_or("-"));
        if (request.error == "1") {
            store.updateRequest(record.id, {{Field::error("2")}});
            heard.push_back("written");
        } else if (request.error == "2") {
            own.reset();
            added = store.streamVideos().subscribe(
                [&](const List& list) { heard.push_back("list " + list.at(0).error.value_or("-")); });
        }
    });
    std::thread::id notified;
    const auto thread = store.streamVideos(PublicStatus::idle).subscribe([&](const List&) {
        notified = std::this_thread::get_id();
    });
    std::thread writer([&] {
        store.updateRequest(record.id, {{Field::error("1")}});
        EXPECT_EQ(notified, std::this_thread::get_id());
        heard.push_back("returned");
    });
    writer.join();
    store.updateRequest(record.id, {{Field::error("3")}});
    EXPECT_THAT(heard, ElementsAre("row -", "row 1", "row 2", "list 2", "written", "returned", "list 3"));
}

TEST(UpdateRequestDataTest, ComparesAndHashesByCaseAndValue) {
    std::unordered_set<Field> fields;
    for (int round = 0; round < 2; ++round) {
        fields.insert({Field::error("a"), Field::error(std::nullopt), Field::processId("a"),
                       Field::processId(std::nullopt), Field::status(Status::processing),
                       Field::status(Status::idle)});
    }
    EXPECT_THAT(fields, SizeIs(6));
}

} // namespace
} // namespace corvanta::test
