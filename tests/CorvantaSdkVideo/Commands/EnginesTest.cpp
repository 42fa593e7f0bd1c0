#include "EngineBench.hpp"

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using namespace test;

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

    RequestPointer request() const {
        const auto dataOf = [this](Type wanted, auto data) {
            return hasData && type == wanted ? std::optional(std::move(data)) : std::nullopt;
        };
        const URL video = videos.empty() ? URL() : videos.front();
        return std::make_shared<CorvantaSdkVideoRequest>(
            row.id, type, CorvantaSdkVideoRequest::Status::idle,
            CorvantaSdkVideoFileDescriptor::custom(location), row.createdAt, row.updatedAt,
            dataOf(Type::encode,
                   VideoEncodingData{video, width, height, {}, {}, CorvantaSdkVideoFrameRate::thirtyFps}),
            dataOf(Type::merge,
                   VideoMergeData{videos, width, height, CorvantaSdkVideoFrameRate::thirtyFps, {}, {}}),
            dataOf(Type::concat, VideoConcatData{videos}), std::nullopt, std::nullopt, engineOf(type));
    }

    void setStatus(Stored status) {
        store->updateRequest(row.id, {{UpdateRequestData::Field::status(status)}});
        executor->notes->clear();
    }
};

/// In `error`, FAILED is the type's own error; in `notes`, PROBES are the probes that its run begins with.
struct Expected {
    std::string error;
    std::string row;
    std::string notes;

    std::string errorOf(Type type) const { return error == "FAILED" ? failedName(type) : error; }
    std::string notesOf(Type type) const {
        const std::string both = "probe a.mp4, probe b.mp4";
        const std::string probes = type == Type::concat  ? both + ", " + both
                                   : type == Type::merge ? both
                                                         : "probe a.mp4";
        return notes.starts_with("PROBES") ? probes + notes.substr(6) : notes;
    }
};

struct Situation {
    std::string name;
    std::function<void(Scene&)> arrange;
    Expected concat;
    Expected merge = concat;
    Expected encode = merge;
};

Expected refused(std::string error) { return {std::move(error), "idle -", ""}; }

std::vector<Situation> situations() {
    const Expected done = {"", "complete -", "PROBES, processing -pid, run, pid 7, complete -pid"};
    const Expected failed = {"FAILED", "error -", "PROBES, processing -pid, run, pid 7, error -pid"};
    const Expected notEnough = refused("invalidInputFiles(notEnoughVideos)");
    const Expected tooSmall = refused("invalidResolution");
    const Expected unplaced = refused("unableToProcessOutput");
    const Expected missing = refused("invalidInputFiles(inputContainsNonExistingFiles)");
    const std::string badLocation = "http://[";
    const auto fail = [](const std::string&) { throw PlatformError("COMPLETED", 1); };
    return {
        {"success", [](Scene&) {}, done},
        {"nobody logged in, and everything else wrong too",
         [=](Scene& scene) {
             scene.loggedOut.emplace(false);
             scene.hasData = false;
             scene.location = badLocation;
         },
         refused("userNotAuthenticated")},
        {"no row",
         [](Scene& scene) { scene.store->deleteRequest(scene.row.id); },
         {"operationNotFound", "no row", ""}},
        {"a row that can't be read", [](Scene& scene) { scene.store->failsReads = true; },
         refused("operationNotFound")},
        {"a running row",
         [](Scene& scene) {
             scene.setStatus(Stored::processing);
             scene.hasData = false;
         },
         {"operationStillsInProgress", "processing -", ""}},
        {"a complete row",
         [](Scene& scene) { scene.setStatus(Stored::completed); },
         {"operationAlreadyCompleted", "complete -", ""}},
        {"no data, no place",
         [=](Scene& scene) {
             scene.hasData = false;
             scene.location = badLocation;
         },
         {"FAILED", "error -", "error"}},
        {"no place",
         [=](Scene& scene) { scene.location = badLocation; },
         refused("FAILED"),
         {"unableToProcessOutput", "idle -", "PROBES"},
         unplaced},
        {"a place that is an input",
         [](Scene& scene) { scene.location = scene.folders.file("a"); },
         {"FAILED", "error -", "PROBES, error -pid"}},
        {"one input", [](Scene& scene) { scene.videos.pop_back(); }, notEnough, notEnough, done},
        {"an input that is not there, and too small a size",
         [](Scene& scene) {
             scene.width = 127.5;
             std::filesystem::remove(scene.folders.file("a.mp4"));
         },
         missing, missing, refused("notFoundVideo")},
        {"too narrow", [](Scene& scene) { scene.width = 127.5; }, done, tooSmall},
        {"too low",
         [](Scene& scene) {
             scene.width = 128;
             scene.height = std::nextafter(128.0, 0.0);
         },
         done, tooSmall},
        {"no number", [](Scene& scene) { scene.height = std::numeric_limits<double>::quiet_NaN(); }, done,
         tooSmall},
        {"just large enough", [](Scene& scene) { scene.width = scene.height = 128; }, done},
        {"a probe that fails",
         [](Scene& scene) {
             scene.executor->onProbe = [](const URL&) -> CorvantaSdkVideoInformation {
                 throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed);
             };
         },
         {"getInformationFailed", "idle -", "probe a.mp4"},
         {"getInformationFailed", "idle -", "probe a.mp4"},
         {"FAILED", "error -", "probe a.mp4, error -pid"}},
        {"a run that fails", [=](Scene& scene) { scene.executor->onRun = fail; }, failed},
        {"a run that fails before it has an id",
         [=](Scene& scene) {
             scene.executor->tellsSession = false;
             scene.executor->onRun = fail;
         },
         {"FAILED", "error -", "PROBES, processing -pid, run, error -pid"}},
        {"a row deleted during the run",
         [](Scene& scene) {
             scene.executor->onRun = [&](const std::string&) { scene.store->deleteRequest(scene.row.id); };
         },
         {"", "no row", done.notes}},
        {"a store that writes no more",
         [](Scene& scene) { scene.store->failsWrites = true; },
         {"", "idle -", done.notes}},
        {"a store that reads no more after the start",
         [=](Scene& scene) {
             scene.executor->onRun = [&scene, fail](const std::string& script) {
                 scene.store->failsReads = true;
                 fail(script);
             };
         },
         failed},
    };
}

TEST(Engines, DoWhatTheSituationAsksFor) {
    const std::string mergeFailure = "error event_video_merge_request: Merge requeset failed. "
                                     "The operation couldn’t be completed. (COMPLETED error 1.)";
    const std::string encodeFailure =
        "error event_video_request_process: Process request failed. COMPLETED error 1";
    for (const Situation& situation : situations()) {
        for (const Type type : types) {
            SCOPED_TRACE(situation.name + ", " + std::string(name(type)));
            Scene scene(type);
            situation.arrange(scene);
            const Expected& expected = type == Type::concat  ? situation.concat
                                       : type == Type::merge ? situation.merge
                                                             : situation.encode;
            const RequestPointer request = scene.request();
            scene.takeErrors();

            ::testing::internal::CaptureStdout();
            EXPECT_EQ(failureOf(request), expected.errorOf(type));
            const std::string printed = ::testing::internal::GetCapturedStdout();

            EXPECT_EQ(scene.takeNotes(), expected.notesOf(type));
            EXPECT_EQ(scene.rowOf(scene.row.id), expected.row);
            EXPECT_EQ(request->outputPath(),
                      expected.error.empty() ? std::optional(scene.outputURL()) : std::nullopt);
            EXPECT_THAT(printed,
                        testing::HasSubstr(scene.store->failsWrites
                                               ? "Request update failed with error the disk is full\n"
                                               : ""));
            EXPECT_EQ(printed.empty(), !scene.store->failsWrites);
            if (type == Type::concat) {
                EXPECT_THAT(scene.takeErrors(), testing::IsEmpty());
                // What a run was to join can be looked up when it has failed.
                EXPECT_TRUE(expected.notes.find("run") == std::string::npos ||
                            std::filesystem::is_empty(Directories::documents().path()) ==
                                expected.error.empty());
            } else if (situation.name == "a run that fails") {
                EXPECT_THAT(scene.takeErrors(),
                            testing::ElementsAre(type == Type::merge ? mergeFailure : encodeFailure));
            }
        }
    }
}

TEST(Engines, RemoveAnOlderOutputWhenItsTurnComes) {
    // The merge leaves it for ffmpeg to overwrite.
    for (const auto& [type, remains] : {std::pair(Type::encode, false), {Type::merge, true}}) {
        Scene scene(type);
        const std::string older = scene.folders.make("out.mp4");
        scene.executor->onProbe = [&](const URL& url) {
            EXPECT_TRUE(std::filesystem::exists(older));
            return plainInformation(url);
        };
        scene.executor->onRun = [&, remains = remains](const std::string&) {
            EXPECT_EQ(std::filesystem::exists(older), remains);
        };
        EXPECT_EQ(failureOf(scene.request()), "");
    }
}

} // namespace
} // namespace corvanta
