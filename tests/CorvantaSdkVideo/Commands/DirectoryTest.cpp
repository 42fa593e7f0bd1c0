#include "EngineBench.hpp"

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Status = CorvantaSdkVideoRequest::Status;

std::vector<UUID> idsOf(const std::vector<RequestPointer>& requests) {
    std::vector<UUID> ids;
    for (const RequestPointer& request : requests) {
        ids.push_back(request->id);
    }
    return ids;
}

TEST(RequestDirectory, MapsRowsToRequests) {
    EngineBench bench;
    const std::vector both = {bench.input("a.mp4"), bench.input("b.mp4")};
    VideoMergeData plainMerge;
    plainMerge.videos = both;
    for (const auto& [stored, status] : {std::pair(Stored::processing, Status::processing),
                                         {Stored::error, Status::error},
                                         {Stored::cancelled, Status::cancelled},
                                         {Stored::completed, Status::complete},
                                         {Stored::idle, Status::idle}}) {
        for (const Type type : types) {
            SCOPED_TRACE(std::string(name(type)) + ' ' + std::string(name(status)));
            const LocalVideoRequest row = bench.insertRow(type, stored);
            bench.store->updateRequest(row.id, {{UpdateRequestData::Field::error("told")}});
            const auto requests = bench.requests.getRequestsByStatus(status);
            ASSERT_THAT(idsOf(requests), ElementsAre(row.id));
            const CorvantaSdkVideoRequest& request = *requests.front();
            EXPECT_EQ(std::pair(request.type, request.status), std::pair(type, status));
            EXPECT_EQ(request.engine, bench.engineOf(type));
            EXPECT_EQ(request.output, CorvantaSdkVideoFileDescriptor::custom(bench.output()));
            EXPECT_EQ(request.outputPath(), bench.outputURL());
            EXPECT_EQ(request.createdAt, row.createdAt);
            EXPECT_GT(request.updatedAt, row.updatedAt);
            EXPECT_EQ(request.errorMessage, "told");
            EXPECT_EQ(request.concatData.has_value(), type == Type::concat);
            EXPECT_EQ(request.mergeData.has_value(), type == Type::merge);
            EXPECT_EQ(request.encodingData.has_value(), type == Type::encode);
            EXPECT_EQ(request.concatData.value_or(VideoConcatData{both}).videos, both);
            EXPECT_EQ(request.mergeData.value_or(plainMerge), plainMerge);
            EXPECT_EQ(request.encodingData ? request.encodingData->inputFileURL : both[0], both[0]);
            bench.store->deleteRequest(row.id);
        }
    }
}

TEST(RequestDirectory, ListsRowsWhoseParametersDontDecode) {
    const std::string rest = R"("videoTracks":[],"audioTracks":[]})";
    using Text = std::optional<std::string>;
    for (const auto& [rawData, rate] : std::vector<std::pair<Text, Text>>{
             {std::nullopt, std::nullopt},
             {"{}", std::nullopt},
             {R"({"framesRate":"31",)" + rest, std::nullopt},
             {R"({"framesRate":"0",)" + rest, "0"},
             {R"({"framesRate":"60","width":200,)" + rest, "60"},
         }) {
        for (const Type type : {Type::merge, Type::encode}) {
            SCOPED_TRACE(rawData.value_or("absent"));
            EngineBench bench;
            const UUID id = bench.insertRow(type, Stored::idle, std::nullopt, rawData).id;
            const auto requests = bench.requests.getRequestsByStatus(Status::idle);
            ASSERT_THAT(idsOf(requests), ElementsAre(id));
            const CorvantaSdkVideoRequest& request = *requests.front();
            EXPECT_EQ(request.mergeData.has_value(), type == Type::merge && rate);
            EXPECT_EQ(request.encodingData.has_value(), type == Type::encode && rate);
            if (rate) {
                EXPECT_EQ(
                    (request.mergeData ? request.mergeData->framesRate : request.encodingData->framesRate)
                        .rawValue(),
                    *rate);
            } else {
                EXPECT_EQ(failureOf(requests.front()), failedName(type));
                EXPECT_EQ(bench.rowOf(id), "error -");
            }
        }
    }
}

TEST(RequestDirectory, ReadsParametersStrictlyButForWhatCanBeAbsent) {
    using StoredMerge = VideoMergeData::SerializableMergeData;
    using StoredEncoding = VideoEncodingData::SerializableEncodingData;
    // Over "videoTracks", "audioTracks", "framesRate" as given, and what else stands in front of them.
    const auto form = [](const std::string& video, const std::string& audio = "[]",
                         const std::string& rate = R"("30")", const std::string& more = "") {
        return "{" + more + R"("videoTracks":)" + video + R"(,"audioTracks":)" + audio + R"(,"framesRate":)" +
               rate + "}";
    };
    struct Case {
        std::string text;
        bool isMerge = false;
        bool isEncoding = false;
    };
    const std::vector<Case> cases = {
        {form("[]", "[]", R"("31")"), true, true},
        {R"({"framesRate":"0","audioTracks":[],"more":{},"videoTracks":[],"width":null,"height":null})", true,
         true},
        {" " + form("[]", "[]", R"("")", R"("width":-1,"height":2e2,)") + " ", true, true},
        {form(R"([{"tracks":[]}])"), true, false},
        {form(R"([{"entryIndex":1,"width":null}])", "[3]"), false, true},
        {form(R"([{"entryIndex":9223372036854775807}])"), false, true},
        {""},
        {"[]"},
        {form("[]") + "x"},
        {form("[]", "[]", "\"\xff\"")},
        {R"({"videoTracks":[],"audioTracks":[]})"},
        {R"({"audioTracks":[],"framesRate":"30"})"},
        {form("[]", "[]", "30")},
        {form("[]", "null")},
        {form("[]", "[]", R"("30")", R"("width":"640",)")},
        {form("[]", "[]", R"("30")", R"("width":1e999,)")},
        {form("[{}]")},
        {form(R"([{"entryIndex":1.5}])")},
        {form(R"([{"entryIndex":18446744073709551615}])")},
        {form(R"([{"entryIndex":1,"height":"2"}])")},
        {form("[]", R"(["1"])")},
        {form(R"([{"tracks":[{"fileIndex":0}]}])")},
        {form("[]", R"([{"tracks":[true]}])")},
    };
    for (const auto& [text, isMerge, isEncoding] : cases) {
        EXPECT_EQ(decode<StoredMerge>(text).has_value(), isMerge) << text;
        EXPECT_EQ(decode<StoredEncoding>(text).has_value(), isEncoding) << text;
    }
    EXPECT_FALSE(decode<StoredMerge>(std::nullopt));
    EXPECT_FALSE(decode<StoredEncoding>(std::nullopt));
}

TEST(RequestDirectory, AsksForTheLoginInListsAlone) {
    EngineBench bench;
    const LocalVideoRequest row = bench.insertRow(Type::concat);
    bench.store->failsReads = true;
    const auto list = [&] { bench.requests.getRequestsByStatus(Status::idle); };
    EXPECT_EQ(failureOf(list), "the disk is full");
    const RecordedLog loggedOut(false);
    EXPECT_EQ(failureOf(list), "userNotAuthenticated");
    EXPECT_EQ(bench.fetch(row.id)->id, row.id);
    std::vector<UUID> listed;
    const auto subscription =
        bench.requests.streamRequests(std::nullopt)
            .subscribe([&](const std::vector<RequestPointer>& requests) { listed = idsOf(requests); });
    EXPECT_THAT(listed, ElementsAre(row.id));
    EXPECT_EQ(failureOf([&] { bench.fetch(makeUUID()); }), "uploadNotFound");
}

TEST(RequestDirectory, DeletesWhatIsNotRunning) {
    EngineBench bench;
    const UUID running = bench.insertRow(Type::merge, Stored::processing, "7").id;
    const UUID done = bench.insertRow(Type::concat, Stored::completed).id;
    const auto remove = [&](const UUID& id) { return failureOf([&] { bench.requests.deleteRequest(id); }); };
    EXPECT_EQ(remove(running), "operationStillsInProgress");
    EXPECT_EQ(bench.rowOf(running), "processing 7");
    {
        const RecordedLog loggedOut(false);
        EXPECT_EQ(remove(done), "userNotAuthenticated");
        EXPECT_EQ(bench.rowOf(done), "complete -");
    }
    EXPECT_EQ(remove(done), "");
    EXPECT_EQ(bench.rowOf(done), "no row");
    EXPECT_EQ(remove(done), "") << "An id that isn't stored is no error.";
}

TEST(RequestDirectory, StreamsNewObjectsThatCanRun) {
    EngineBench bench;
    const LocalVideoRequest row = bench.insertRow(Type::encode, Stored::error);
    std::vector<std::vector<UUID>> failed;
    std::vector<RequestPointer> emitted;
    std::vector<Status> seen;
    const auto failedSubscription =
        bench.requests.streamRequests(Status::error).subscribe([&](const auto& requests) {
            failed.push_back(idsOf(requests));
        });
    auto subscription =
        bench.requests.streamVideoRequest(row.id).subscribe([&](const RequestPointer& request) {
            emitted.push_back(request);
            seen.push_back(request->status);
        });

    EXPECT_EQ(failureOf(emitted.front()), "");
    EXPECT_THAT(seen, ElementsAre(Status::error, Status::processing, Status::processing, Status::complete));
    EXPECT_THAT(failed, ElementsAre(ElementsAre(row.id), testing::IsEmpty()));
    EXPECT_EQ(failureOf(emitted.back()), "operationAlreadyCompleted");
    subscription.cancel();
    bench.store->updateRequest(row.id, {{UpdateRequestData::Field::status(Stored::idle)}});
    EXPECT_EQ(emitted.size(), 4U);
}

} // namespace
} // namespace corvanta
