#include <CorvantaSdkVideo/Commands/Builders/ConcatBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/EncodingBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/MergeBuilder.hpp>

#include "EngineBench.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvanta {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Descriptor = CorvantaSdkVideoFileDescriptor;
using Operation = LocalVideoRequest::OperationType;

/// Looks at the output location while a row is inserted.
class WatchingStore : public corvanta::InMemoryVideoStore {
  public:
    void insert(const LocalVideoRequest& request) override {
        const std::string path = request.outputPath.path();
        placeholder = std::filesystem::exists(path);
        contents = readFile(path);
        if (fails) {
            throw PlatformError("store", 13);
        }
        inserted.push_back(request);
        InMemoryVideoStore::insert(request);
    }

    bool fails = false;
    bool placeholder = false;
    std::string contents;
    std::vector<LocalVideoRequest> inserted;
};

class BuildersTest : public ::testing::Test {
  protected:
    RequestPointer build(Type type, const Descriptor& output, const std::vector<std::string>& names) {
        std::vector<CorvantaSdkVideoFile> files;
        for (const std::string& name : names) {
            files.emplace_back(bench_.input(name));
        }
        switch (type) {
        case Type::concat:
            return ConcatBuilder(files, output, bench_.concat, store_).build();
        case Type::merge:
            return MergeBuilder(files, output, bench_.merge, store_).build();
        case Type::encode:
            break;
        }
        return EncodingBuilder(files.front(), output, bench_.encode, store_).build();
    }

    EngineBench bench_;
    const std::shared_ptr<WatchingStore> store_ = std::make_shared<WatchingStore>();
};


TEST_F(BuildersTest, StoreWhatTheyBuildAndLeaveThePlaceEmpty) {
    const std::string documents = bench_.directory.file("data/corvanta-sdk-video/documents/");
    struct Case {
        Type type;
        Operation operation;
        std::string path;
        bool placeholder;
        std::size_t inputs;
        std::optional<std::string> rawData;
    };
    const std::string nothingChosen = R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})";
    const std::vector<Case> cases = {
        {Type::concat, Operation::concat, documents + "out.mov", true, 3, std::nullopt},
        {Type::merge, Operation::merge, documents + "out.mp4", false, 3, nothingChosen},
        {Type::encode, Operation::encode, documents + "out.mp4", true, 1, nothingChosen},
    };
    for (const Case& built : cases) {
        for (const bool hasOlderFile : {false, true}) {
            SCOPED_TRACE(name(built.type));
            store_->inserted.clear();
            if (hasOlderFile) {
                writeFile(built.path, "older");
            }
            const auto before = std::chrono::system_clock::now();
            const RequestPointer request =
                build(built.type, Descriptor::files("out"), {"a.mov", "b.mp4", "a.mov"});
            ASSERT_EQ(store_->inserted.size(), 1U);
            const LocalVideoRequest& row = store_->inserted.front();
            EXPECT_EQ(row.id, request->id);
            EXPECT_EQ(row.status, Stored::idle);
            EXPECT_EQ(row.outputPath.path(), built.path);
            EXPECT_EQ(row.output, Descriptor::files("out"));
            EXPECT_EQ(row.type, built.operation);
            EXPECT_EQ(row.rawData, built.rawData);
            EXPECT_EQ(row.error, std::nullopt);
            EXPECT_EQ(row.processId, std::nullopt);
            ASSERT_EQ(row.inputFiles.size(), built.inputs);
            for (std::size_t input = 0; input < built.inputs; ++input) {
                EXPECT_EQ(row.inputFiles[input],
                          (LocalVideoRequestFile{bench_.input(input == 1 ? "b.mp4" : "a.mov"),
                                                 static_cast<std::int64_t>(input)}));
            }
            EXPECT_EQ(store_->placeholder, built.placeholder || hasOlderFile);
            EXPECT_EQ(store_->contents, built.placeholder || !hasOlderFile ? "" : "older");
            EXPECT_FALSE(std::filesystem::exists(built.path));

            EXPECT_EQ(request->type, built.type);
            EXPECT_EQ(request->status, CorvantaSdkVideoRequest::Status::idle);
            EXPECT_EQ(request->output, Descriptor::files("out"));
            EXPECT_EQ(request->outputPath(), std::nullopt);
            EXPECT_EQ(request->errorMessage, std::nullopt);
            EXPECT_EQ(request->engine, bench_.engineOf(built.type));
            EXPECT_EQ(request->concatData.has_value(), built.type == Type::concat);
            EXPECT_EQ(request->mergeData.has_value(), built.type == Type::merge);
            EXPECT_EQ(request->encodingData.has_value(), built.type == Type::encode);
            EXPECT_LE(before, request->createdAt);
            EXPECT_LE(request->createdAt, row.createdAt);
            EXPECT_LE(row.createdAt, row.updatedAt);
        }
    }
}

TEST_F(BuildersTest, StoreTheLaterValuesOfTheSameId) {
    MergeBuilder merge({CorvantaSdkVideoFile(bench_.input("a.mp4"))}, Descriptor::cache("m"), bench_.merge,
                       store_);
    const RequestPointer first = merge.build();
    merge.width = 640;
    merge.height = 359.5;
    merge.framesRate = CorvantaSdkVideoFrameRate::fiftyFps;
    merge.videoTracks = {{{{0, 1}}, 128, {}}};
    merge.audioTracks = {{{{0, 2}}}};
    const RequestPointer second = merge.build();
    EXPECT_EQ(first->id, merge.id);
    EXPECT_EQ(second->id, merge.id);
    EXPECT_EQ(first->mergeData->width, std::nullopt);
    EXPECT_EQ(second->mergeData->videos, std::vector{bench_.input("a.mp4")});
    EXPECT_EQ(second->mergeData->framesRate.rawValue(), "50");

    EncodingBuilder encode(CorvantaSdkVideoFile(bench_.input("a.mp4")), Descriptor::cache("e"), bench_.encode,
                           store_);
    encode.height = 128;
    encode.framesRate = CorvantaSdkVideoFrameRate::twentyFourFps;
    encode.videoTracks = {{3, {}, 720}};
    encode.audioTracks = {0, 2};
    EXPECT_NE(encode.build()->id, merge.id);

    std::vector<std::string> stored;
    for (const LocalVideoRequest& row : store_->inserted) {
        stored.push_back(*row.rawData);
    }
    EXPECT_THAT(
        stored,
        ElementsAre(
            R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})",
            R"({"width":640,"height":359.5,"videoTracks":[{"tracks":[{"fileIndex":0,"entryIndex":1}],)"
            R"("width":128}],"audioTracks":[{"tracks":[{"fileIndex":0,"entryIndex":2}]}],"framesRate":"50"})",
            R"({"height":128,"videoTracks":[{"entryIndex":3,"height":720}],"audioTracks":[0,2],)"
            R"("framesRate":"24"})"));
}

TEST_F(BuildersTest, GiveAnObjectWithoutARowWhenItCantBeStored) {
    const std::string place = bench_.directory.file("data/corvanta-sdk-video/documents/out.mp4");
    EXPECT_EQ(failureOf([&] { runBlocking(build(Type::concat, Descriptor::files("out"), {})->process()); }),
              "operationNotFound");
    EXPECT_THAT(bench_.takeErrors(), IsEmpty());
    for (const Type type : types) {
        SCOPED_TRACE(name(type));
        const auto unplaced = build(type, Descriptor::custom("http://["), {"a.mp4", "b.mp4"});
        EXPECT_EQ(failureOf([&] { runBlocking(unplaced->process()); }), "operationNotFound");
        EXPECT_THAT(store_->inserted, IsEmpty());
        EXPECT_THAT(bench_.takeErrors(), IsEmpty());

        store_->fails = true;
        const auto unstored = build(type, Descriptor::files("out"), {"a.mp4", "b.mp4"});
        store_->fails = false;
        EXPECT_THAT(
            bench_.takeErrors(),
            ElementsAre("error event_video_request_insert: Insert request failed. The operation couldn’t be "
                        "completed. (store error 13.)"));
        EXPECT_EQ(std::filesystem::exists(place), type != Type::merge);
        std::filesystem::remove(place);
        EXPECT_EQ(failureOf([&] { runBlocking(unstored->process()); }), "operationNotFound");
    }
    // A parameter that has no text makes a row without parameters.
    MergeBuilder merge({}, Descriptor::files("out"), bench_.merge, store_);
    merge.width = std::numeric_limits<double>::quiet_NaN();
    merge.build();
    ASSERT_EQ(store_->inserted.size(), 1U);
    EXPECT_EQ(store_->inserted.front().rawData, std::nullopt);
}

} // namespace
} // namespace corvanta
