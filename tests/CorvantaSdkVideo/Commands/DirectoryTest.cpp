#include "EngineBench.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvanta {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
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
    const std::vector<std::pair<Stored, Status>> statuses = {{Stored::processing, Status::processing},
                                                             {Stored::error, Status::error},
                                                             {Stored::cancelled, Status::cancelled},
                                                             {Stored::completed, Status::complete},
                                                             {Stored::idle, Status::idle}};
    for (const auto& [stored, status] : statuses) {
        for (const Type type : {Type::concat, Type::merge, Type::encode}) {
            SCOPED_TRACE(std::string(name(type)) + ' ' + std::string(name(status)));
            const LocalVideoRequest row = bench.insertRow(type, stored);
            bench.store->updateRequest(row.id, {{UpdateRequestData::Field::error("told")}});
            const auto requests = bench.requests.getRequestsByStatus(status);
            ASSERT_EQ(requests.size(), 1U);
            const CorvantaSdkVideoRequest& request = *requests.front();
            EXPECT_EQ(request.id, row.id);
            EXPECT_EQ(request.type, type);
            EXPECT_EQ(request.status, status);
            EXPECT_EQ(request.engine, bench.engineOf(type));
            EXPECT_EQ(request.output, CorvantaSdkVideoFileDescriptor::custom(bench.output()));
            EXPECT_EQ(request.outputPath(), bench.outputURL());
            EXPECT_EQ(request.createdAt, row.createdAt);
            EXPECT_GT(request.updatedAt, row.updatedAt);
            EXPECT_EQ(request.errorMessage, "told");
            const std::vector both = {bench.input("a.mp4"), bench.input("b.mp4")};
            EXPECT_EQ(request.concatData.has_value(), type == Type::concat);
            EXPECT_EQ(request.mergeData.has_value(), type == Type::merge);
            EXPECT_EQ(request.encodingData.has_value(), type == Type::encode);
            if (request.concatData) {
                EXPECT_EQ(request.concatData->videos, both);
            } else if (request.mergeData) {
                VideoMergeData plain;
                plain.videos = both;
                EXPECT_EQ(*request.mergeData, plain);
            } else {
                EXPECT_EQ(request.encodingData->inputFileURL, both[0]);
            }
            bench.store->deleteRequest(row.id);
        }
    }
}

TEST(RequestDirectory, ListsRowsWhoseParametersDontDecode) {
    const std::string rest = R"("videoTracks":[],"audioTracks":[]})";
    struct Case {
        std::optional<std::string> rawData;
        std::optional<std::string> rate;
    };
    const std::vector<Case> cases = {
        {std::nullopt, {}},
        {"", {}},
        {"{}", {}},
        {R"({"framesRate":"31",)" + rest, {}},
        {R"({"framesRate":"",)" + rest, {}},
        {R"({"framesRate":30,)" + rest, {}},
        {R"({"framesRate":"0",)" + rest, "0"},
        {R"({"framesRate":"24",)" + rest, "24"},
        {R"({"framesRate":"60","width":200,)" + rest, "60"},
    };
    for (const Case& parameters : cases) {
        for (const Type type : {Type::merge, Type::encode, Type::concat}) {
            SCOPED_TRACE(parameters.rawData.value_or("absent"));
            EngineBench bench;
            LocalVideoRequest row = bench.insertRow(type);
            bench.store->deleteRequest(row.id);
            row.rawData = parameters.rawData;
            bench.store->insert(row);
            const auto requests = bench.requests.getRequestsByStatus(Status::idle);
            ASSERT_EQ(requests.size(), 1U);
            const CorvantaSdkVideoRequest& request = *requests.front();
            EXPECT_EQ(request.concatData.has_value(), type == Type::concat);
            EXPECT_EQ(request.mergeData.has_value(), type == Type::merge && parameters.rate);
            EXPECT_EQ(request.encodingData.has_value(), type == Type::encode && parameters.rate);
            if (request.mergeData) {
                EXPECT_EQ(request.mergeData->framesRate.rawValue(), *parameters.rate);
            } else if (request.encodingData) {
                EXPECT_EQ(request.encodingData->framesRate.rawValue(), *parameters.rate);
            } else if (type != Type::concat) {
                EXPECT_EQ(failureOf([&] { runBlocking(requests.front()->process()); }),
                          type == Type::merge ? "mergeFailed" : "encodingFailed");
                EXPECT_EQ(bench.rowOf(row.id), "error -");
            }
        }
    }
    EngineBench bench;
    LocalVideoRequest row = bench.insertRow(Type::encode);
    bench.store->deleteRequest(row.id);
    row.inputFiles.clear();
    bench.store->insert(row);
    EXPECT_FALSE(bench.fetch(row.id)->encodingData);
}

TEST(RequestDirectory, AsksForTheLoginInListsAlone) {
    EngineBench bench;
    const LocalVideoRequest row = bench.insertRow(Type::concat);
    bench.store->failsReads = true;
    EXPECT_EQ(failureOf([&] { bench.requests.getRequestsByStatus(Status::idle); }), "the disk is full");
    const RecordedLog loggedOut(false);
    EXPECT_EQ(failureOf([&] { bench.requests.getRequestsByStatus(Status::idle); }), "userNotAuthenticated");
    EXPECT_EQ(bench.fetch(row.id)->id, row.id);
    std::vector<UUID> listed;
    const auto subscription =
        bench.requests.streamRequests(std::nullopt)
            .subscribe([&](const std::vector<RequestPointer>& requests) { listed = idsOf(requests); });
    EXPECT_THAT(listed, ElementsAre(row.id));
    EXPECT_EQ(failureOf([&] { bench.fetch(makeUUID()); }), "uploadNotFound");
}

TEST(RequestDirectory, StreamsNewObjectsThatCanRun) {
    EngineBench bench;
    const LocalVideoRequest first = bench.insertRow(Type::merge);
    const LocalVideoRequest second = bench.insertRow(Type::encode, Stored::error);
    std::vector<std::vector<UUID>> all;
    std::vector<std::vector<UUID>> failed;
    std::vector<RequestPointer> emitted;
    const auto allSubscription =
        bench.requests.streamRequests(std::nullopt).subscribe([&](const auto& requests) {
            all.push_back(idsOf(requests));
        });
    const auto failedSubscription =
        bench.requests.streamRequests(Status::error).subscribe([&](const auto& requests) {
            failed.push_back(idsOf(requests));
        });
    auto subscription = bench.requests.streamVideoRequest(second.id).subscribe(
        [&](const RequestPointer& request) { emitted.push_back(request); });

    runBlocking(emitted.front()->process());
    std::vector<Status> seen;
    for (const RequestPointer& request : emitted) {
        seen.push_back(request->status);
    }
    EXPECT_THAT(seen, ElementsAre(Status::error, Status::processing, Status::processing, Status::complete));
    EXPECT_THAT(failed, ElementsAre(ElementsAre(second.id), IsEmpty()));
    EXPECT_EQ(all.size(), 4U);
    for (std::size_t later = 1; later < emitted.size(); ++later) {
        EXPECT_EQ(failureOf([&] { runBlocking(emitted[later]->process()); }), "operationAlreadyCompleted");
    }
    subscription.cancel();
    bench.store->updateRequest(second.id, {{UpdateRequestData::Field::status(Stored::idle)}});
    EXPECT_EQ(emitted.size(), 4U);
    EXPECT_EQ(failureOf([&] { runBlocking(bench.fetch(first.id)->process()); }), "");
}

} // namespace
} // namespace corvanta
