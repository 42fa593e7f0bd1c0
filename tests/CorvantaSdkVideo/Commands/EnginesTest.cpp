#include "EngineBench.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace corvanta {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A stored request and the object that is processed, which can be changed apart from each other.
struct Scene : EngineBench {
    explicit Scene(Type type_) : type(type_), row(insertRow(type_)) {}

    const Type type;
    LocalVideoRequest row;
    std::string location = output();
    std::vector<URL> videos = {input("a.mp4"), input("b.mp4")};
    bool hasData = true;
    std::optional<double> width;
    std::optional<double> height;
    std::optional<RecordedLog> loggedOut;

    void fill(CorvantaSdkVideoRequest& request) const {
        request.concatData.reset();
        request.mergeData.reset();
        request.encodingData.reset();
        if (!hasData) {
            return;
        }
        switch (type) {
        case Type::concat:
            request.concatData = VideoConcatData{videos};
            break;
        case Type::merge:
            request.mergeData.emplace();
            request.mergeData->videos = videos;
            request.mergeData->width = width;
            request.mergeData->height = height;
            break;
        case Type::encode:
            request.encodingData.emplace();
            request.encodingData->inputFileURL = videos.empty() ? URL() : videos.front();
            request.encodingData->width = width;
            request.encodingData->height = height;
            break;
        }
    }

    RequestPointer request() const {
        const auto made = std::make_shared<CorvantaSdkVideoRequest>(
            row.id, type, CorvantaSdkVideoRequest::Status::idle,
            CorvantaSdkVideoFileDescriptor::custom(location), row.createdAt, row.updatedAt, std::nullopt,
            std::nullopt, std::nullopt, std::nullopt, std::nullopt, engineOf(type));
        fill(*made);
        return made;
    }

    void setStatus(Stored status) {
        store->updateRequest(row.id, {{UpdateRequestData::Field::status(status)}});
        notes->clear();
    }
};

struct Expected {
    std::string error;
    std::string row;
    std::string notes;
};

struct Situation {
    std::string name;
    std::function<void(Scene&)> arrange;
    Expected concat;
    Expected merge;
    Expected encode;
    /// Whether the merge and the encode log the failure.
    bool logged = false;

    const Expected& expected(Type type) const {
        return type == Type::concat ? concat : type == Type::merge ? merge : encode;
    }
};

const std::string joined = "probe a.mp4, probe b.mp4, probe a.mp4, probe b.mp4, processing, run, pid 7";
const std::string merged = "probe a.mp4, probe b.mp4, processing, run, pid 7";
const std::string encoded = "probe a.mp4, processing, run, pid 7";
constexpr const char* badLocation = "http://[";

Situation refusal(std::string name, std::function<void(Scene&)> arrange, const std::string& error,
                  const std::string& row = "idle -") {
    const Expected expected{error, row, ""};
    return {std::move(name), std::move(arrange), expected, expected, expected};
}

std::vector<Situation> situations() {
    const auto probeFails = [](Scene& scene) {
        scene.executor->onProbe = [](const URL& url) {
            return url.lastPathComponent() == "a.mp4"
                       ? throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed)
                       : plainInformation(url);
        };
    };
    const auto small = [](Scene& scene) { scene.width = 127.5; };
    return {
        {"success",
         [](Scene&) {},
         {"", "complete -", joined + ", complete -pid"},
         {"", "complete -", merged + ", complete -pid"},
         {"", "complete -", encoded + ", complete -pid"}},
        {"again after an error",
         [](Scene& scene) { scene.setStatus(Stored::error); },
         {"", "complete -", joined + ", complete -pid"},
         {"", "complete -", merged + ", complete -pid"},
         {"", "complete -", encoded + ", complete -pid"}},
        {"again after a cancel",
         [](Scene& scene) { scene.setStatus(Stored::cancelled); },
         {"", "complete -", joined + ", complete -pid"},
         {"", "complete -", merged + ", complete -pid"},
         {"", "complete -", encoded + ", complete -pid"}},
        refusal(
            "nobody logged in, and everything else wrong too",
            [badLocation = badLocation](Scene& scene) {
                scene.loggedOut.emplace(false);
                scene.hasData = false;
                scene.location = badLocation;
            },
            "userNotAuthenticated"),
        refusal(
            "no row", [](Scene& scene) { scene.store->deleteRequest(scene.row.id); }, "operationNotFound",
            "no row"),
        refusal(
            "a row that can't be read", [](Scene& scene) { scene.store->failsReads = true; },
            "operationNotFound"),
        refusal(
            "a running row",
            [](Scene& scene) {
                scene.setStatus(Stored::processing);
                scene.hasData = false;
            },
            "operationStillsInProgress", "processing -"),
        refusal(
            "a complete row", [](Scene& scene) { scene.setStatus(Stored::completed); },
            "operationAlreadyCompleted", "complete -"),
        {"no data, no place",
         [](Scene& scene) {
             scene.hasData = false;
             scene.location = badLocation;
         },
         {"concatFailed", "error -", "error"},
         {"mergeFailed", "error -", "error"},
         {"encodingFailed", "error -", "error"}},
        {"no place and no inputs",
         [](Scene& scene) {
             scene.location = badLocation;
             scene.videos = {};
         },
         {"concatFailed", "idle -", ""},
         {"invalidInputFiles(notEnoughVideos)", "idle -", ""},
         {"unableToProcessOutput", "idle -", ""}},
        {"no place",
         [](Scene& scene) { scene.location = badLocation; },
         {"concatFailed", "idle -", ""},
         {"unableToProcessOutput", "idle -", "probe a.mp4, probe b.mp4"},
         {"unableToProcessOutput", "idle -", ""}},
        {"one input",
         [](Scene& scene) { scene.videos.pop_back(); },
         {"invalidInputFiles(notEnoughVideos)", "idle -", ""},
         {"invalidInputFiles(notEnoughVideos)", "idle -", ""},
         {"", "complete -", encoded + ", complete -pid"}},
        {"an input that is not there, and too small a size",
         [small](Scene& scene) {
             small(scene);
             std::filesystem::remove(scene.directory.file("a.mp4"));
         },
         {"invalidInputFiles(inputContainsNonExistingFiles)", "idle -", ""},
         {"invalidInputFiles(inputContainsNonExistingFiles)", "idle -", ""},
         {"notFoundVideo", "idle -", ""}},
        {"an input of another kind",
         [](Scene& scene) {
             scene.videos[0] = scene.input("a.txt");
             writeFile(scene.videos[0].path(), "");
             scene.location = scene.output() + ".x";
             scene.executor->onRun = [](const std::string&) { throw std::runtime_error("refused"); };
         },
         {"concatFailed", "error -",
          "probe a.txt, probe b.mp4, probe a.txt, probe b.mp4, processing, run, pid 7, error -pid"},
         {"mergeFailed", "error -", "probe a.txt, probe b.mp4, processing, run, pid 7, error -pid"},
         {"invalidFile", "idle -", ""}},
        {"too narrow",
         small,
         {"", "complete -", joined + ", complete -pid"},
         {"invalidResolution", "idle -", ""},
         {"invalidResolution", "idle -", ""}},
        {"too low",
         [](Scene& scene) {
             scene.width = 128;
             scene.height = std::nextafter(128.0, 0.0);
         },
         {"", "complete -", joined + ", complete -pid"},
         {"invalidResolution", "idle -", ""},
         {"invalidResolution", "idle -", ""}},
        {"no number",
         [](Scene& scene) { scene.height = std::numeric_limits<double>::quiet_NaN(); },
         {"", "complete -", joined + ", complete -pid"},
         {"invalidResolution", "idle -", ""},
         {"invalidResolution", "idle -", ""}},
        {"just large enough",
         [](Scene& scene) { scene.width = scene.height = 128; },
         {"", "complete -", joined + ", complete -pid"},
         {"", "complete -", merged + ", complete -pid"},
         {"", "complete -", encoded + ", complete -pid"}},
        {"a probe that fails",
         probeFails,
         {"getInformationFailed", "idle -", "probe a.mp4"},
         {"getInformationFailed", "idle -", "probe a.mp4"},
         {"encodingFailed", "error -", "probe a.mp4, error -pid"}},
        {"unlike inputs",
         [](Scene& scene) {
             scene.executor->onProbe = [](const URL& url) {
                 auto information = plainInformation(url);
                 information.videos[0].width = url.lastPathComponent() == "a.mp4" ? 640 : 320;
                 return information;
             };
         },
         {"invalidInputFiles(differentVideoTracks)", "idle -",
          "probe a.mp4, probe b.mp4, probe a.mp4, probe b.mp4"},
         {"", "complete -", merged + ", complete -pid"},
         {"", "complete -", encoded + ", complete -pid"}},
        {"a run that fails",
         [](Scene& scene) {
             scene.executor->onRun = [](const std::string&) { throw PlatformError("COMPLETED", 1); };
         },
         {"concatFailed", "error -", joined + ", error -pid"},
         {"mergeFailed", "error -", merged + ", error -pid"},
         {"encodingFailed", "error -", encoded + ", error -pid"},
         true},
        {"a run that fails before it has an id",
         [](Scene& scene) {
             scene.executor->tellsSession = false;
             scene.executor->onRun = [](const std::string&) { throw PlatformError("COMPLETED", 1); };
         },
         {"concatFailed", "error -",
          "probe a.mp4, probe b.mp4, probe a.mp4, probe b.mp4, processing, run, error -pid"},
         {"mergeFailed", "error -", "probe a.mp4, probe b.mp4, processing, run, error -pid"},
         {"encodingFailed", "error -", "probe a.mp4, processing, run, error -pid"},
         true},
        {"a row deleted during the run",
         [](Scene& scene) {
             scene.executor->onRun = [&scene](const std::string&) {
                 scene.store->deleteRequest(scene.row.id);
             };
         },
         {"", "no row", joined + ", complete -pid"},
         {"", "no row", merged + ", complete -pid"},
         {"", "no row", encoded + ", complete -pid"}},
        {"a store that writes no more",
         [](Scene& scene) { scene.store->failsWrites = true; },
         {"", "idle -", joined + ", complete -pid"},
         {"", "idle -", merged + ", complete -pid"},
         {"", "idle -", encoded + ", complete -pid"}},
        {"a store that reads no more after the start",
         [](Scene& scene) {
             scene.executor->onRun = [&scene](const std::string&) {
                 scene.store->failsReads = true;
                 throw PlatformError("COMPLETED", 1);
             };
         },
         {"concatFailed", "error -", joined + ", error -pid"},
         {"mergeFailed", "error -", merged + ", error -pid"},
         {"encodingFailed", "error -", encoded + ", error -pid"},
         true},
    };
}

TEST(Engines, DoWhatTheSituationAsksFor) {
    const std::string description = "The operation couldn’t be completed. (COMPLETED error 1.)";
    for (const Situation& situation : situations()) {
        for (const Type type : {Type::concat, Type::merge, Type::encode}) {
            SCOPED_TRACE(situation.name + ", " + std::string(name(type)));
            Scene scene(type);
            situation.arrange(scene);
            const Expected& expected = situation.expected(type);
            const RequestPointer request = scene.request();
            scene.takeErrors();

            ::testing::internal::CaptureStdout();
            std::optional<URL> result;
            EXPECT_EQ(failureOf([&] { result = runBlocking(request->process()).videoURL; }), expected.error);
            const std::string printed = ::testing::internal::GetCapturedStdout();

            EXPECT_EQ(scene.takeNotes(), expected.notes);
            EXPECT_EQ(scene.rowOf(scene.row.id), expected.row);
            EXPECT_EQ(result.has_value(), expected.error.empty());
            EXPECT_EQ(result.value_or(scene.outputURL()), scene.outputURL());
            EXPECT_EQ(request->outputPath(), result);
            if (scene.store->failsWrites) {
                EXPECT_THAT(printed, HasSubstr("Request update failed with error the disk is full\n"));
            } else {
                EXPECT_EQ(printed, "");
            }
            if (situation.logged && type == Type::merge) {
                EXPECT_THAT(
                    scene.takeErrors(),
                    ElementsAre("error event_video_merge_request: Merge requeset failed. " + description));
            } else if (situation.logged && type == Type::encode) {
                EXPECT_THAT(
                    scene.takeErrors(),
                    ElementsAre(
                        "error event_video_request_process: Process request failed. COMPLETED error 1"));
            } else if (type == Type::concat) {
                EXPECT_THAT(scene.takeErrors(), IsEmpty());
            }
        }
    }
}

TEST(ConcatEngine, KeepsItsListFileOnlyOnFailure) {
    for (const bool fails : {false, true}) {
        Scene scene(Type::concat);
        std::string list;
        scene.executor->onRun = [&](const std::string& script) {
            const std::size_t start = script.find("/", script.find(" -i "));
            list = script.substr(start, script.find(' ', start) - start);
            EXPECT_EQ(script, "-y -f concat -safe 0 -i " + list + " -c copy \"" + scene.output() + ".mp4\"");
            EXPECT_EQ(readFile(list), "file " + scene.directory.file("a.mp4") + "\nfile " +
                                          scene.directory.file("b.mp4") + "\n");
            if (fails) {
                throw PlatformError("COMPLETED", 1);
            }
        };
        EXPECT_EQ(failureOf([&] { runBlocking(scene.request()->process()); }), fails ? "concatFailed" : "");
        EXPECT_EQ(std::filesystem::exists(list), fails);
        EXPECT_EQ(std::filesystem::path(list).parent_path(),
                  scene.directory.path() / "data/corvanta-sdk-video/documents");
        EXPECT_TRUE(parseUUID(std::filesystem::path(list).stem().string()));
    }
}

TEST(ConcatEngine, ReadsFilesThatAListCantNameThroughLinks) {
    for (const bool fails : {false, true}) {
        Scene scene(Type::concat);
        scene.videos = {scene.input("it's a \"clip\".mp4"), scene.input("b.mp4"),
                        scene.input("back\\slash.mp4")};
        for (const URL& video : scene.videos) {
            writeFile(video.path(), video.path());
        }
        scene.executor->onRun = [&](const std::string& script) {
            const std::size_t start = script.find("/", script.find(" -i "));
            std::istringstream list(readFile(script.substr(start, script.find(' ', start) - start)));
            std::vector<std::string> contents;
            for (std::string line; std::getline(list, line);) {
                contents.push_back(readFile(line.substr(5)));
            }
            EXPECT_THAT(contents,
                        ElementsAre(scene.videos[0].path(), scene.videos[1].path(), scene.videos[2].path()));
            if (fails) {
                throw PlatformError("COMPLETED", 1);
            }
        };
        EXPECT_EQ(failureOf([&] { runBlocking(scene.request()->process()); }), fails ? "concatFailed" : "");
        EXPECT_EQ(scene.documents(), fails ? std::vector<std::string>{".txt"} : std::vector<std::string>{});
    }
}

TEST(ConcatEngine, TakesTheExtensionOfItsFirstVideo) {
    struct Case {
        std::vector<std::string> names;
        std::string extension;
    };
    for (const Case& inputs :
         {Case{{"a.mov", "b.mp4"}, ".mov"}, {{"a.MKV", "b.MKV"}, ".MKV"}, {{"x.y/a", "b.mp4"}, "."}}) {
        Scene scene(Type::concat);
        scene.videos.clear();
        for (const std::string& name : inputs.names) {
            std::filesystem::create_directories(
                std::filesystem::path(scene.directory.file(name)).parent_path());
            writeFile(scene.directory.file(name), "");
            scene.videos.push_back(scene.input(name));
        }
        EXPECT_EQ(runBlocking(scene.request()->process()).videoURL.path(), scene.output() + inputs.extension);
        EXPECT_THAT(scene.executor->scripts,
                    ElementsAre(HasSubstr('"' + scene.output() + inputs.extension + '"')));
    }
}

TEST(EncoderEngine, StartsFromAnEmptyPlaceAndPassesItsSelection) {
    Scene scene(Type::encode);
    for (const bool readable : {false, true}) {
        writeFile(scene.outputURL().path(), "older");
        scene.executor->onProbe = [&](const URL& url) {
            EXPECT_EQ(readFile(scene.outputURL().path()), "older");
            return readable ? plainInformation(url)
                            : throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed);
        };
        scene.executor->onRun = [&](const std::string&) {
            EXPECT_FALSE(std::filesystem::exists(scene.outputURL().path()));
            EXPECT_EQ(scene.rowOf(scene.row.id), "processing 7");
            throw PlatformError("COMPLETED", 1);
        };
        EXPECT_EQ(failureOf([&] { runBlocking(scene.request()->process()); }), "encodingFailed");
        EXPECT_EQ(std::filesystem::exists(scene.outputURL().path()), !readable);
    }
    // The merge leaves an older file for ffmpeg to overwrite.
    Scene merge(Type::merge);
    writeFile(merge.outputURL().path(), "older");
    merge.executor->onRun = [&](const std::string&) {
        EXPECT_EQ(readFile(merge.outputURL().path()), "older");
    };
    runBlocking(merge.request()->process());

    Scene selection(Type::encode);
    const auto request = selection.request();
    request->encodingData->videoTracks = {{1, 640, {}}, {0, {}, {}}};
    request->encodingData->audioTracks = {2, 0};
    auto rich = plainInformation(selection.input("a.mp4"));
    rich.videos = {rich.videos[0], rich.videos[0]};
    rich.videos[1].index = 1;
    rich.audios = {rich.audios[0], rich.audios[0]};
    rich.audios[0].index = 2;
    rich.audios[1].index = 3;
    selection.executor->onProbe = [rich](const URL&) { return rich; };
    runBlocking(request->process());
    const auto command = FFMPEGMergeCommandGenerator().generateCommand(
        {rich}, std::nullopt, std::nullopt, {{{{0, 1}}, 640, {}}, {{{0, 0}}, {}, {}}},
        {{{{0, 2}}}, {{{0, 0}}}}, CorvantaSdkVideoFrameRate::thirtyFps, selection.outputURL().path());
    EXPECT_THAT(selection.executor->scripts, ElementsAre(command.script));
}

TEST(Engines, RefusePlacesThatACommandCantName) {
    for (const Type type : {Type::concat, Type::merge, Type::encode}) {
        Scene scene(type);
        scene.location = scene.directory.file("a \"quoted\" name");
        EXPECT_NE(failureOf([&] { runBlocking(scene.request()->process()); }), "");
        EXPECT_EQ(scene.rowOf(scene.row.id), "error -");
        EXPECT_THAT(scene.executor->scripts, IsEmpty());
    }
}

} // namespace
} // namespace corvanta
