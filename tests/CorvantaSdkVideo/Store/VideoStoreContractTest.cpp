#include "StoredRecords.hpp"

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>

#include <gmock/gmock.h>

#include <support/InMemoryVideoStore.hpp>
#include <support/UserFolders.hpp>

#include <functional>
#include <optional>
#include <thread>

namespace corvanta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;
using PublicStatus = CorvantaSdkVideoRequestStatus;

const CoreDataCorvantaStore::Error uploadNotFound(CoreDataCorvantaStore::Error::uploadNotFound);

struct PersistentStore {
    UserFolders folders;
    CoreDataCorvantaStore store{URL::fromFilePath(folders.file("video-store.sqlite"))};
};

struct MemoryStore {
    InMemoryVideoStore store;
};

// What every `VideoStore` promises.
template <typename Holder>
class VideoStoreContractTest : public ::testing::Test {
  protected:
    LocalVideoRequest inserted(Status status = Status::idle) {
        const LocalVideoRequest record = makeRecord(status);
        store().insert(record);
        return record;
    }
    void update(const LocalVideoRequest& record, decltype(UpdateRequestData::fields) fields) {
        store().updateRequest(record.id, {std::move(fields)});
    }
    VideoStore& store() { return holder_.store; }

  private:
    Holder holder_;
};

using Stores = ::testing::Types<PersistentStore, MemoryStore>;
TYPED_TEST_SUITE(VideoStoreContractTest, Stores);

TYPED_TEST(VideoStoreContractTest, GivesBackWhatWasInserted) {
    VideoStore& store = this->store();
    struct Case {
        const char* what;
        std::function<void(LocalVideoRequest&)> inserted;
        std::function<void(LocalVideoRequest&)> read;
    };
    const auto nothing = [](LocalVideoRequest&) {};
    const auto url = [](const char* text) { return URL::parse(text).value(); };
    const Case cases[] = {
        {"a plain record", nothing, nothing},
        {"an encode with parameters",
         [](auto& r) {
             r.type = LocalVideoRequest::OperationType::encode;
             r.rawData = R"({"audioTracks":[0,2],"framesRate":"30"})";
         },
         nothing},
        {"a merge with odd texts",
         [](auto& r) {
             r.type = LocalVideoRequest::OperationType::merge;
             r.rawData = std::string("'; DROP TABLE x; -- \0 ünï \xff", 29);
         },
         nothing},
        {"an empty text is not an absent one", [](auto& r) { r.rawData = ""; }, nothing},
        {"no inputs", [](auto& r) { r.inputFiles.clear(); }, nothing},
        {"dates before 1970 and to the nanosecond",
         [](auto& r) {
             r.createdAt = LocalVideoRequest::Date(std::chrono::nanoseconds(-123456789));
             r.updatedAt = LocalVideoRequest::Date(std::chrono::nanoseconds(1));
         },
         nothing},
        {"error and processId are left out",
         [](auto& r) {
             r.error = "failed";
             r.processId = "7";
         },
         [](auto& r) { r.error = r.processId = std::nullopt; }},
        {"indices are positions",
         [](auto& r) {
             r.inputFiles[0].index = 7;
             r.inputFiles[1].index = 5;
         },
         [](auto& r) {
             r.inputFiles[0].index = 0;
             r.inputFiles[1].index = 1;
         }},
        {"the output follows the path",
         [&](auto& r) {
             r.outputPath = URL::fromFilePath("/videos/a.b.mp4");
             r.output = CorvantaSdkVideoFileDescriptor::cache("elsewhere");
         },
         [](auto& r) { r.output = CorvantaSdkVideoFileDescriptor::custom("/videos/a.b"); }},
        {"a bare path, dots in folders alone", [&](auto& r) { r.outputPath = url("/v.d/name"); },
         [](auto& r) { r.output = CorvantaSdkVideoFileDescriptor::custom("/v.d/name"); }},
        {"a hidden file's name is no extension", [&](auto& r) { r.outputPath = url("/v/.mp4"); },
         [](auto& r) { r.output = CorvantaSdkVideoFileDescriptor::custom("/v/.mp4"); }},
        {"an odd name is escaped", [](auto& r) { r.outputPath = URL::fromFilePath("/v/50% #1? ü.mp4"); },
         [](auto& r) { r.output = CorvantaSdkVideoFileDescriptor::custom("/v/50%25 %231%3F ü"); }},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(example.what);
        LocalVideoRequest record = makeRecord();
        example.inserted(record);
        store.insert(record);
        LocalVideoRequest expected = record;
        example.read(expected);
        EXPECT_EQ(store.getRequest(record.id), expected);
        const auto read = store.getRequest(record.id).value();
        EXPECT_EQ(std::hash<LocalVideoRequest>{}(read), std::hash<LocalVideoRequest>{}(expected));
        EXPECT_EQ(read.output.url(record.outputPath.pathExtension()).value().path(),
                  record.outputPath.pathExtension().empty() ? read.outputPath.path() + "."
                                                            : read.outputPath.path());
        EXPECT_THAT(store.getRequests(Status::idle), ::testing::Contains(expected));
    }
    EXPECT_EQ(store.getRequests(Status::idle).size(), std::size(cases));
    EXPECT_EQ(store.getRequest(makeUUID()), std::nullopt);
}

TYPED_TEST(VideoStoreContractTest, UpdatesTheFieldsOfTheSetAlone) {
    const LocalVideoRequest other = this->inserted(Status::completed);
    LocalVideoRequest expected = this->inserted();
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
        this->update(expected, fields);
        for (const Field& field : fields) {
            if (field == Field::status(Status::processing) || field == Field::status(Status::error)) {
                expected.status = field.newStatus();
            } else {
                (field.kind() == Field::Case::error ? expected.error : expected.processId) = field.text();
            }
        }
        const auto read = this->store().getRequest(expected.id).value();
        EXPECT_THAT(read.updatedAt,
                    ::testing::AllOf(::testing::Ge(before), ::testing::Le(std::chrono::system_clock::now())));
        EXPECT_NE(read, expected) << "Records that differ in updatedAt alone are not equal.";
        expected.updatedAt = read.updatedAt;
        EXPECT_EQ(read, expected);
    }
    this->store().updateRequest(makeUUID(), {{Field::status(Status::error)}});
    this->store().deleteRequest(makeUUID());
    EXPECT_EQ(allRecords(this->store()), sorted({expected, other}));
    this->store().deleteRequest(expected.id);
    this->store().deleteRequest(expected.id);
    EXPECT_EQ(allRecords(this->store()), List{other});
}

TYPED_TEST(VideoStoreContractTest, ActsOnTheFirstOfEqualIds) {
    const LocalVideoRequest first = this->inserted();
    LocalVideoRequest second = first;
    second.rawData = "second";
    this->store().insert(second);
    this->update(first, {Field::status(Status::error)});
    EXPECT_THAT(this->store().getRequests(Status::idle), ElementsAre(second));
    EXPECT_EQ(this->store().getRequest(first.id).value().rawData, std::nullopt);
    this->store().deleteRequest(first.id);
    EXPECT_THAT(allRecords(this->store()), ElementsAre(second));
}

TYPED_TEST(VideoStoreContractTest, ResetsProcessingRowsInOneCommit) {
    List expected;
    for (const Status status : {Status::processing, Status::processing, Status::idle, Status::completed}) {
        expected.push_back(this->inserted(status));
    }
    int commits = 0;
    const auto subscription = this->store().streamVideos().subscribe([&](const List&) { ++commits; });
    for (int round = 0; round < 2; ++round) {
        this->store().resetPendingRequests();
        expected[0].status = expected[1].status = Status::cancelled;
        EXPECT_EQ(allRecords(this->store()), sorted(expected));
        EXPECT_EQ(commits, 2) << "The first value and one change, and nothing for an idle reset.";
    }
}

TYPED_TEST(VideoStoreContractTest, LogsThreeOperations) {
    class Sink : public SharedCorvantaSdkLogSink {
      public:
        void addLog(const SharedCorvantaSdkLog& record) override {
            lines.push_back(record.tag + ": " + record.message);
        }
        std::vector<std::string> lines;
    };
    const auto sink = std::make_shared<Sink>();
    auto& common = SharedCorvantaSdkCommonKt::sdk_common();
    const auto before = common.log();
    common.setLog(sink);
    const LocalVideoRequest record = this->inserted();
    this->update(record, {});
    this->store().getRequest(record.id);
    this->store().getRequests(Status::idle);
    this->store().resetPendingRequests();
    auto stream = this->store().streamVideo(record.id);
    this->store().deleteRequest(record.id);
    common.setLog(before);
    const auto line = [&](Event event, const EventMessage& message) {
        return std::string(name(event)) + ": " + message.message();
    };
    EXPECT_THAT(sink->lines, ElementsAre(line(Event::insertRequest, EventMessage::insertRequest(record.id)),
                                         line(Event::updateRequest, EventMessage::updateRequest(record.id)),
                                         line(Event::getRequestById, EventMessage::getRequestBy(record.id))));
}

TYPED_TEST(VideoStoreContractTest, ListStreamsGiveTheListOfTheirCreationAndThenEachOther) {
    VideoStore& store = this->store();
    std::vector<List> whole;
    std::vector<List> processing;
    auto emptyStream = store.streamVideos();
    auto emptyProcessing = store.streamVideos(PublicStatus::processing);
    const LocalVideoRequest first = this->inserted();
    auto subscription = emptyStream.subscribe([&](const List& list) { whole.push_back(list); });
    auto filtered = emptyProcessing.subscribe([&](const List& list) { processing.push_back(list); });
    EXPECT_THAT(whole, IsEmpty()) << "The list was empty at creation.";

    this->update(first, {});
    ASSERT_THAT(whole, SizeIs(1));
    EXPECT_EQ(whole[0], store.getRequests(Status::idle));
    EXPECT_THAT(processing, IsEmpty()) << "A commit outside the filtered list.";

    this->update(first, {Field::status(Status::processing)});
    this->update(first, {Field::processId("1")});
    this->update(first, {Field::status(Status::completed)});
    this->update(first, {Field::error("unseen by the filter")});
    EXPECT_THAT(whole, SizeIs(5));
    EXPECT_THAT(processing, ElementsAre(SizeIs(1), SizeIs(1), IsEmpty()));
    EXPECT_EQ(processing[1][0].processId, "1");

    store.deleteRequest(first.id);
    EXPECT_THAT(whole.back(), IsEmpty());
    subscription.cancel();
    this->inserted();
    EXPECT_THAT(whole, SizeIs(6));
}

TYPED_TEST(VideoStoreContractTest, SubscribersOfOneListStreamShareItsMemory) {
    this->inserted();
    const auto stream = this->store().streamVideos();
    std::vector<std::string> heard;
    const auto listen = [&](const char* who) {
        return stream.subscribe(
            [&heard, who](const List& list) { heard.push_back(who + std::to_string(list.size())); });
    };
    auto first = listen("first");
    const auto second = listen("second");
    this->inserted();
    EXPECT_THAT(heard, ElementsAre("first1", "second1", "first2"));
    first.cancel();
    this->inserted();
    const auto late = listen("late");
    EXPECT_THAT(heard, ElementsAre("first1", "second1", "first2", "second3", "late1"));
}

TYPED_TEST(VideoStoreContractTest, ARowStreamGivesEachUpdateAndIsSilentAfterDeletion) {
    const LocalVideoRequest record = this->inserted();
    const LocalVideoRequest other = this->inserted();
    const auto stream = this->store().streamVideo(record.id);
    this->update(record, {Field::error("before subscribing")});
    List heard;
    const auto subscription = stream.subscribe([&](const auto& request) { heard.push_back(request); });
    ASSERT_THAT(heard, SizeIs(1));
    EXPECT_EQ(heard[0].error, "before subscribing") << "Read at subscription, not at creation.";
    this->update(record, {Field::status(Status::processing)});
    this->update(other, {Field::status(Status::processing)});
    this->inserted();
    this->update(record, {Field::status(Status::processing)});
    this->store().resetPendingRequests();
    ASSERT_THAT(heard, SizeIs(4));
    EXPECT_EQ(heard[1].status, Status::processing);
    EXPECT_EQ(heard[3].status, Status::cancelled);
    this->store().deleteRequest(record.id);
    this->store().insert(record);
    this->update(record, {});
    EXPECT_THAT(heard, SizeIs(4)) << "A new row of the same id is another row.";
    try {
        this->store().streamVideo(makeUUID());
        FAIL() << "An unknown id has no stream.";
    } catch (const CoreDataCorvantaStore::Error& error) {
        EXPECT_EQ(error, uploadNotFound);
        EXPECT_EQ(localizedDescription(error),
                  "The operation couldn’t be completed. (CoreDataCorvantaStore.Error error 3.)");
    }
}

TYPED_TEST(VideoStoreContractTest, ObserversRunInTheCommitAndMayUseTheStore) {
    VideoStore& store = this->store();
    const LocalVideoRequest record = this->inserted();
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
    const Field fields[] = {Field::error("a"),
                            Field::error("b"),
                            Field::error(std::nullopt),
                            Field::processId("a"),
                            Field::processId(std::nullopt),
                            Field::status(Status::processing),
                            Field::status(Status::idle)};
    for (const Field& left : fields) {
        for (const Field& right : fields) {
            EXPECT_EQ(left == right, &left == &right);
            EXPECT_EQ(std::hash<Field>{}(left) == std::hash<Field>{}(right), &left == &right);
        }
    }
    UpdateRequestData forwards;
    UpdateRequestData backwards;
    forwards.fields.insert(std::begin(fields), std::end(fields));
    backwards.fields.insert(std::rbegin(fields), std::rend(fields));
    EXPECT_THAT(forwards.fields, SizeIs(std::size(fields)));
    EXPECT_EQ(forwards, backwards);
    EXPECT_EQ(std::hash<UpdateRequestData>{}(forwards), std::hash<UpdateRequestData>{}(backwards));
}

} // namespace
} // namespace corvanta::test
