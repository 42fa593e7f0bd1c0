#include <CorvantaSdkVideo/Commands/Builders/ConcatBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/EncodingBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/MergeBuilder.hpp>

#include "EngineBench.hpp"

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using namespace test;
using Descriptor = CorvantaSdkVideoFileDescriptor;
using Operation = LocalVideoRequest::OperationType;

class BuildersTest : public ::testing::Test, protected EngineBench {
  protected:
    RequestPointer build(Type type, const Descriptor& place, const std::vector<std::string>& names) {
        std::vector<CorvantaSdkVideoFile> files;
        for (const std::string& name : names) {
            files.emplace_back(input(name));
        }
        return type == Type::concat  ? ConcatBuilder(files, place, concat, store).build()
               : type == Type::merge ? MergeBuilder(files, place, merge, store).build()
                                     : EncodingBuilder(files.front(), place, encode, store).build();
    }

    LocalVideoRequest stored(const UUID& id) const { return store->getRequest(id).value(); }
};

TEST_F(BuildersTest, StoreWhatTheyBuildAndLeaveThePlaceEmpty) {
    const std::string documents = Directories::documents().path() + "/";
    struct Case {
        Type type;
        Operation operation;
        std::string path;
        bool placeholder;
        std::vector<LocalVideoRequestFile> inputs;
        std::optional<std::string> rawData;
    };
    const std::string nothingChosen = R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})";
    const LocalVideoRequestFile first{input("a.mov"), 0};
    const std::vector three = {first, {input("b.mp4"), 1}, {input("a.mov"), 2}};
    for (const Case& built :
         {Case{Type::concat, Operation::concat, documents + "out.mov", true, three, {}},
          {Type::merge, Operation::merge, documents + "out.mp4", false, three, nothingChosen},
          {Type::encode, Operation::encode, documents + "out.mp4", true, {first}, nothingChosen}}) {
        for (const std::string older : {"", "file", "symbolic link", "dangling link", "hard link"}) {
            SCOPED_TRACE(std::string(name(built.type)) + " " + older);
            const std::string precious = folders.make("precious", "older");
            if (older == "file") {
                writeFile(built.path, "older");
            } else if (older == "hard link") {
                std::filesystem::create_hard_link(precious, built.path);
            } else if (!older.empty()) {
                std::filesystem::create_symlink(older == "dangling link" ? "/nowhere" : precious, built.path);
            }
            const bool hasOlderFile = std::filesystem::exists(built.path);
            store->onInsert = [&](const LocalVideoRequest&) {
                EXPECT_EQ(std::filesystem::exists(built.path), built.placeholder || hasOlderFile);
                EXPECT_EQ(readFile(built.path), built.placeholder || !hasOlderFile ? "" : "older");
            };
            const auto before = std::chrono::system_clock::now();
            const RequestPointer request =
                build(built.type, Descriptor::files("out"), {"a.mov", "b.mp4", "a.mov"});
            EXPECT_FALSE(std::filesystem::is_symlink(built.path) || std::filesystem::exists(built.path));
            EXPECT_EQ(readFile(precious), "older");
            const LocalVideoRequest row = stored(request->id);
            EXPECT_EQ(row.status, Stored::idle);
            EXPECT_EQ(row.outputPath.path(), built.path);
            EXPECT_EQ(row.type, built.operation);
            EXPECT_EQ(row.rawData, built.rawData);
            EXPECT_EQ(row.inputFiles, built.inputs);
            EXPECT_LE(before, row.createdAt);
            EXPECT_LE(row.createdAt, row.updatedAt);

            EXPECT_EQ(request->type, built.type);
            EXPECT_EQ(request->status, CorvantaSdkVideoRequest::Status::idle);
            EXPECT_EQ(request->output, Descriptor::files("out"));
            EXPECT_EQ(request->outputPath(), std::nullopt);
            EXPECT_EQ(request->engine, engineOf(built.type));
        }
    }
    store->onInsert = [](const LocalVideoRequest&) {};
    // Another process, in another folder, finds the same file.
    const auto relative = stored(build(Type::merge, Descriptor::custom("a/rel"), {"a.mp4"})->id);
    EXPECT_EQ(relative.outputPath.path(), (std::filesystem::current_path() / "a/rel.mp4").string());
    // An output that is an input is left to the run, which refuses it.
    folders.make("a.mp4", "of value");
    for (const Type type : types) {
        build(type, Descriptor::custom(folders.file("a")), {"a.mp4", "b.mp4"});
        EXPECT_EQ(readFile(folders.file("a.mp4")), "of value");
    }
}

TEST_F(BuildersTest, StoreTheLaterValuesOfTheSameId) {
    std::vector<std::string> rawData;
    store->onInsert = [&](const LocalVideoRequest& row) { rawData.push_back(*row.rawData); };
    MergeBuilder merging({CorvantaSdkVideoFile(input("a.mp4"))}, Descriptor::cache("m"), merge, store);
    const RequestPointer first = merging.build();
    merging.width = 640;
    merging.height = 359.5;
    merging.framesRate = CorvantaSdkVideoFrameRate::fiftyFps;
    merging.videoTracks = {{{{0, 1}}, 128, {}}};
    merging.audioTracks = {{{{0, 2}}}};
    const RequestPointer second = merging.build();
    EXPECT_EQ(first->id, merging.id);
    EXPECT_EQ(second->id, merging.id);
    EXPECT_EQ(first->mergeData->width, std::nullopt);
    EXPECT_EQ(second->mergeData->framesRate.rawValue(), "50");
    store->deleteRequest(merging.id); // The first of the two rows.
    EXPECT_EQ(fetch(merging.id)->mergeData, second->mergeData);

    EncodingBuilder encoding(CorvantaSdkVideoFile(input("a.mp4")), Descriptor::cache("e"), encode, store);
    encoding.height = 128;
    encoding.framesRate = CorvantaSdkVideoFrameRate::twentyFourFps;
    encoding.videoTracks = {{3, {}, 720}};
    encoding.audioTracks = {0, 2};
    EXPECT_NE(encoding.build()->id, merging.id);
    EXPECT_THAT(
        rawData,
        testing::ElementsAre(
            R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})",
            R"({"width":640,"height":359.5,"videoTracks":[{"tracks":[{"fileIndex":0,"entryIndex":1}],)"
            R"("width":128}],"audioTracks":[{"tracks":[{"fileIndex":0,"entryIndex":2}]}],"framesRate":"50"})",
            R"({"height":128,"videoTracks":[{"entryIndex":3,"height":720}],"audioTracks":[0,2],)"
            R"("framesRate":"24"})"));
}

TEST_F(BuildersTest, GiveAnObjectWithoutARowWhenItCantBeStored) {
    const std::string place = Directories::documents().path() + "/out.mp4";
    const std::vector<std::string> refused = {"error event_video_request_insert: Insert request failed. the "
                                              "disk is full"};
    EXPECT_EQ(failureOf(build(Type::concat, Descriptor::custom("http://["), {})), "operationNotFound");
    for (const Type type : types) {
        SCOPED_TRACE(name(type));
        const auto unplaced = build(type, Descriptor::custom("http://["), {"a.mp4", "b.mp4"});
        EXPECT_EQ(failureOf(unplaced), "operationNotFound");
        EXPECT_THAT(takeErrors(), testing::IsEmpty());

        store->failsWrites = true;
        const auto unstored = build(type, Descriptor::files("out"), {"a.mp4", "b.mp4"});
        store->failsWrites = false;
        EXPECT_EQ(takeErrors(), refused);
        EXPECT_EQ(std::filesystem::exists(place), type != Type::merge);
        std::filesystem::remove(place);
        EXPECT_EQ(failureOf(unstored), "operationNotFound");
    }
    // A parameter that has no text makes a row without parameters.
    MergeBuilder merging({}, Descriptor::files("out"), merge, store);
    merging.width = std::numeric_limits<double>::quiet_NaN();
    merging.build();
    EXPECT_EQ(stored(merging.id).rawData, std::nullopt);
}

} // namespace
} // namespace corvanta
