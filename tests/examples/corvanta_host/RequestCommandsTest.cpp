#include "examples/corvanta_host/HostRun.hpp"

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <optional>
#include <regex>

namespace corvanta::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

const std::string idPattern = "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}";

/// The host with a store of its own.
class RequestCommandsTest : public ::testing::Test {
  protected:
    RequestCommandsTest() { options_.environment = {{"XDG_DATA_HOME", directory_.file("data")}}; }

    HostRun run(const std::vector<std::string>& arguments) const { return runHost(arguments, options_); }

    json requests(const std::string& status) const {
        return json::parse(run({"--json", "requests", "--status", status}).output);
    }

    std::string file(const std::string& name) const { return directory_.file(name); }

    const TemporaryDirectory directory_;
    Program::Options options_;
    const std::string clip_ = makeClip({.seconds = 0.5});
    const std::string wide_ = makeClip({.seconds = 0.5, .pictures = {{.width = 320}}});
};

TEST_F(RequestCommandsTest, TellResultsAndFailures) {
    const std::string told = "^request " + idPattern + "\n";
    const std::string unknownID = "01234567-89ab-4def-8123-456789abcdef";
    const std::string upright =
        makeClip({.seconds = 0.5, .pictures = {{.width = 640, .height = 240}}, .rotation = -90});
    std::filesystem::create_directory(file("folder"));
    writeFile(file("older.mp4"), "older");
    struct Case {
        std::vector<std::string> arguments;
        std::string output;
        std::string errors = "^$";
    };
    for (const Case& expected : std::vector<Case>{
             {{"can-concat", clip_, clip_}, "yes\n"},
             {{"can-concat", "--json", clip_, clip_}, "{\n  \"canConcat\": true\n}\n"},
             {{"concat", file("joined it"), clip_, clip_}, file("joined it.mp4\n"), told + "$"},
             {{"concat", clip_, clip_, "-o", file("folder")},
              file("folder/" + std::filesystem::path(clip_).filename().string() + '\n'),
              told + "$"},
             {{"merge", "-o", file("m.mp4"), clip_, wide_, "--width", "256", "--height", "128", "--fps",
               "25"},
              file("m.mp4\n"),
              told + "$"},
             {{"merge", clip_, wide_, "-o", file("t"), "--video-track", "0:0,1:0@160x", "--audio-track",
               "1:1"},
              file("t.mp4\n"),
              told + "$"},
             {{"encode", file("e"), wide_, "--video", "0@160x128", "--audio", "1", "--fps", "24"},
              file("e.mp4\n"),
              told + "$"},
             {{"encode", upright, "-o", file("older"), "--force"},
              file("older.mp4\n"),
              "^hint: .* was taken upright .*; --width 240 --height 640 gives an upright one\n" +
                  told.substr(1)},
             {{"encode", wide_, "-o", file("one side"), "--height", "130"},
              file("one side.mp4\n"),
              told + "$"},
             {{"encode", clip_, "-o", file("chosen"), "--quality", "low", "--encoder", "libx264",
               "--audio-bitrate", "64k", "--audio-channels", "1"},
              file("chosen.mp4\n"),
              told + "encoded with libx264\n$"},
             {{"tracks", "remove-audio", clip_, file("silent.mp4")}, file("silent.mp4\n")},
             {{"tracks", "remove-video", clip_, "-o", file("sound.mp4"), "--json"},
              "{\n  \"path\": \"" + file("sound.mp4") + "\"\n}\n"},
             {{"tracks", "add-video", clip_, file("two.mp4"), "--duration", "500", "--width", "64",
               "--height", "64"},
              file("two.mp4\n")},
             {{"tracks", "add-audio", clip_, file("two sounds.mp4")}, file("two sounds.mp4\n")},
         }) {
        SCOPED_TRACE(::testing::PrintToString(expected.arguments));
        const HostRun ended = run(expected.arguments);
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.output, expected.output);
        EXPECT_TRUE(std::regex_search(ended.errors, std::regex(expected.errors))) << ended.errors;
    }
    const std::string host = "^corvanta_host: ";
    const std::string toldHost = told + "corvanta_host: ";
    const std::string different =
        "differentVideoTracks: the width of video track 0 is 320 in .* and 160 in .*\n$";
    for (const auto& [arguments, status, errors] :
         std::vector<std::tuple<std::vector<std::string>, int, std::string>>{
             {{"can-concat", clip_}, 3, host + "notEnoughVideos: 1 given, 2 are needed\n$"},
             {{"encode", clip_, "-o", file("e"), "--force", "--audio-rate", "96000"},
              3,
              host + "the sound can't have 96000 Hz: the inputs have 48000 at most\n$"},
             {{"can-concat", "--logged-out", clip_, clip_}, 4, host + "userNotAuthenticated: .*\n$"},
             {{"can-concat", clip_, wide_}, 1, host + different},
             {{"concat", "-o", file("x"), clip_, wide_}, 3, toldHost + different},
             {{"concat", "-o", file("x"), clip_, "/no/such.mp4"},
              3,
              host + "notFoundVideo: there is no /no/such.mp4\n$"},
             {{"process", unknownID}, 3, host + "there is no such request: " + unknownID + "\n$"},
             {{"watch", unknownID}, 3, host + "there is no such request: " + unknownID + "\n$"},
             {{"requests", "--logged-out"}, 4, host + "userNotAuthenticated: .*\n$"},
         }) {
        SCOPED_TRACE(::testing::PrintToString(arguments));
        const HostRun ended = run(arguments);
        EXPECT_EQ(ended.status, status);
        EXPECT_EQ(ended.output, errors == host + different && arguments.size() == 3 ? "no\n" : "");
        EXPECT_TRUE(std::regex_search(ended.errors, std::regex(errors))) << ended.errors;
    }
    EXPECT_EQ(probed(file("m.mp4")).videos[0].width, 256);
    EXPECT_EQ(probed(file("m.mp4")).videos[0].frameRate, "25/1");
    EXPECT_EQ(probed(file("t.mp4")).videos[0].width, 160);
    EXPECT_EQ(probed(file("e.mp4")).videos[0].height, 128);
    EXPECT_EQ(probed(file("one side.mp4")).videos[0].width, 346);
    EXPECT_EQ(probed(file("chosen.mp4")).videos[0].codec, "h264");
    EXPECT_EQ(probed(file("chosen.mp4")).audios[0].channels, 1);
    EXPECT_EQ(probed(file("two.mp4")).videos.size(), 2U);
    EXPECT_EQ(probed(file("two sounds.mp4")).audios.size(), 2U);
    EXPECT_FALSE(std::filesystem::exists(file("x.mp4")));
    EXPECT_EQ(requests("complete").size(), 8U);
    EXPECT_EQ(requests("idle").size(), 1U);
}

TEST_F(RequestCommandsTest, FindTheRequestsOfAnotherProcess) {
    std::filesystem::create_directory(file("a"));
    std::optional<FakeProgram> broken(
        std::in_place, "CORVANTA_FFMPEG",
        "for last; do :; done; echo begun >\"$last\"; echo no space >&2; exit 1\n");
    const HostRun merged = run({"--json", "merge", file("a/b"), clip_, clip_, "--height", "128"});
    broken.reset();
    EXPECT_EQ(merged.status, 1);
    EXPECT_EQ(json::parse(merged.output)["error"]["details"], "no space");
    EXPECT_FALSE(std::filesystem::exists(file("a/b.mp4")));
    const json failed = requests("error");
    ASSERT_EQ(failed.size(), 1U);
    const json& stored = failed[0];
    EXPECT_EQ(stored["id"], merged.id());
    EXPECT_EQ(stored["type"], "merge");
    EXPECT_EQ(stored["outputPath"], file("a/b.mp4"));
    EXPECT_EQ(stored["inputs"], (json{clip_, clip_}));
    EXPECT_EQ(stored["errorMessage"], nullptr);
    EXPECT_EQ(
        stored["parameters"],
        json::parse(R"({"width":170,"height":128,"videoTracks":[],"audioTracks":[],"framesRate":"30"})"));
    EXPECT_THAT(run({"requests"}).output,
                MatchesRegex(merged.id() + "  merge   error +[^ ]+Z  2 files -> .*/a/b.mp4\n"));

    const HostRun again = run({"--json", "process", merged.id()});
    EXPECT_EQ(again.status, 0) << again.errors;
    EXPECT_EQ(json::parse(again.output), (json{{"id", merged.id()}, {"path", file("a/b.mp4")}}));
    EXPECT_EQ(probed(file("a/b.mp4")).videos[0].height, 128);
    EXPECT_THAT(run({"process", merged.id()}).errors,
                testing::EndsWith("corvanta_host: operationAlreadyCompleted: the request is complete\n"));
    EXPECT_EQ(requests("complete")[0]["id"], merged.id());

    // A stored path is found by what the file is, wherever it was moved in its folder.
    const std::string moving = file("moving.mp4");
    std::filesystem::copy_file(clip_, moving);
    broken.emplace("CORVANTA_FFMPEG", "exit 1\n");
    const HostRun unmade = run({"concat", file("joined"), moving, clip_});
    broken.reset();
    EXPECT_EQ(unmade.status, 1);
    std::filesystem::rename(moving, file("moved.mp4"));
    EXPECT_EQ(requests("error")[0]["inputs"][0], file("moved.mp4"));
    EXPECT_EQ(run({"process", unmade.id()}).output, file("joined.mp4\n"));
}

TEST_F(RequestCommandsTest, JoinTellsBeforeItBegins) {
    const std::string other = makeClip({.pictures = {{.rate = "25"}}, .codecs = "-c:v mpeg4 -c:a aac"});
    const HostRun copy = run({"--json", "join", clip_, clip_, "-o", file("film"), "--dry-run"});
    EXPECT_EQ(json::parse(copy.output)["way"], "copied") << copy.errors;
    const json merge =
        json::parse(run({"--json", "join", clip_, other, "-o", file("film"), "--dry-run"}).output);
    EXPECT_EQ(merge["way"], "merged");
    EXPECT_EQ(merge["path"], file("film.mp4"));
    EXPECT_THAT(std::string(merge["obstacle"]), HasSubstr("the codec of video track 0 is mpeg4 in " + other));
    EXPECT_TRUE(requests("idle").empty());
    for (const auto& [arguments, status, text] :
         std::vector<std::tuple<std::vector<std::string>, int, std::string>>{
             {{"join", clip_, "-o", file("film")}, 3, "notEnoughVideos: 1 given"},
             {{"join", clip_, other, "-o", file("film.mkv")}, 2, "name it " + file("film.mp4")},
             {{"join", clip_, clip_, "-o", file("film"), "--width", "641"}, 2, "an even number"},
             {{"join", file("film"), clip_, clip_}, 0, "copied: the files are alike"},
             {{"join", clip_, clip_, "-o", file("film")}, 3, "film.mp4 is there already"},
             {{"join", clip_, clip_, "-o", file("in another.mkv")}, 0, "copied"},
             {{"join", clip_, other, "-o", file("film"), "--force", "--fps", "25"},
              0,
              "25 frames a second"}}) {
        const HostRun ended = run(arguments);
        EXPECT_EQ(ended.status, status) << ended.errors;
        EXPECT_THAT(ended.errors, HasSubstr(text));
    }
    EXPECT_EQ(probed(file("in another.mkv")).videoCodec(), "h264");
    EXPECT_EQ(probed(file("film.mp4")).videos[0].frameRate, "25/1");
    EXPECT_EQ(requests("complete").size(), 3U);
}

TEST_F(RequestCommandsTest, ProcessSeveral) {
    std::vector<std::string> ids;
    for (const char* name : {"a", "b", "c"}) {
        const FakeProgram broken("CORVANTA_FFMPEG", "exit 1\n");
        ids.push_back(run({"concat", file(name), clip_, clip_}).id());
    }
    writeFile(file("b.mp4"), "of value");
    const std::string absent = "01234567-89ab-4def-8123-456789abcdef";
    EXPECT_EQ(run({"process", ids[0], "x"}).status, 2);
    EXPECT_EQ(requests("complete").size(), 0U) << "A word that is no id is told before anything runs.";
    const HostRun ended = run({"--json", "process", ids[0], absent, ids[1], ids[2]});
    EXPECT_EQ(ended.status, 3) << "As both failures.";
    const json told = json::parse(ended.output);
    ASSERT_EQ(told.size(), 4U);
    EXPECT_EQ(told[0]["path"], file("a.mp4"));
    EXPECT_EQ(told[3]["path"], file("c.mp4"));
    for (const auto& [index, id, name] :
         {std::tuple(1, absent, "uploadNotFound"), {2, ids[1], "outputExists"}}) {
        EXPECT_EQ(told[index]["error"]["name"], name);
        EXPECT_EQ(told[index]["error"]["request"], id);
    }
    EXPECT_EQ(readFile(file("b.mp4")), "of value");
    // What `requests --json` prints is what "-" reads.
    const std::string piped = std::string("\"$0\" requests --json --status error | \"$0\" process - --force");
    Program rest("/bin/sh", {"-c", piped, CORVANTA_HOST}, options_);
    EXPECT_EQ(rest.wait(), 0) << rest.errors();
    EXPECT_EQ(rest.output(), file("b.mp4\n"));
    Program junk("/bin/sh", {"-c", "echo '[{\"no\": 1}]' | \"$0\" process -", CORVANTA_HOST}, options_);
    EXPECT_EQ(junk.wait(), 2);
    EXPECT_THAT(junk.errors(), HasSubstr("no list of requests"));
}

TEST_F(RequestCommandsTest, DeleteRequests) {
    for (const char* name : {"a", "b"}) {
        const FakeProgram broken("CORVANTA_FFMPEG", "exit 1\n");
        run({"concat", file(name), clip_, clip_});
    }
    run({"concat", file("c"), clip_, clip_});
    const std::string first = requests("error")[0]["id"];
    const std::string complete = requests("complete")[0]["id"];
    for (const auto& [arguments, errors] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{}, "--delete takes ids, --status or --finished"},
             {{complete, "x"}, "\"x\" is no request id"},
             {{complete, "01234567-89ab-4def-8123-456789abcdef"},
              "there is no such request: 01234567-89ab-4def-8123-456789abcdef"},
         }) {
        std::vector<std::string> all = {"requests", "--delete"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_THAT(run(all).errors, HasSubstr(errors));
    }
    EXPECT_EQ(json::parse(run({"--json", "requests", "--finished"}).output).size(), 3U);
    EXPECT_THAT(run({"requests", "--delete", first}).output, testing::StartsWith(first));
    EXPECT_EQ(requests("error").size(), 1U);
    EXPECT_EQ(json::parse(run({"--json", "requests", "--delete", "--finished"}).output).size(), 2U);
    EXPECT_EQ(run({"requests"}).output, "");
    EXPECT_TRUE(std::filesystem::exists(file("c.mp4")));
}

TEST_F(RequestCommandsTest, ShareOneStore) {
    // Many at once make the store.
    std::vector<std::unique_ptr<Program>> starts;
    for (int number = 0; number < 6; ++number) {
        starts.push_back(
            std::make_unique<Program>(CORVANTA_HOST, std::vector<std::string>{"requests"}, options_));
    }
    for (const auto& start : starts) {
        EXPECT_EQ(start->wait(), 0) << start->errors();
    }
    Program watching(CORVANTA_HOST, {"watch"}, options_);
    const auto shows = [&](const std::string& text) {
        EXPECT_TRUE(eventually([&] { return watching.output().find(text) != std::string::npos; })) << text;
    };
    const std::string longClip = makeClip({.seconds = 20, .pictures = {{.width = 1280, .height = 720}}});
    const std::vector<std::string> merge = {"merge", file("long"), longClip, longClip};
    const auto startMerge = [&] {
        auto host = std::make_unique<Program>(CORVANTA_HOST, merge, options_);
        // Each look is a process that starts.
        EXPECT_TRUE(eventually([&] {
            const json running = requests("processing");
            return running.size() == 1 && std::filesystem::exists(file("long.mp4"));
        }));
        return host;
    };
    const auto first = startMerge();
    shows("merge processing");
    const std::string id = requests("processing")[0]["id"];
    EXPECT_THAT(run({"process", id}).errors, HasSubstr("operationStillsInProgress"));
    EXPECT_THAT(run({"requests", "--delete", id}).errors, HasSubstr("operationStillsInProgress"));
    CoreDataCorvantaStore store(URL::fromFilePath(file("data/corvanta-sdk-video/video-store.sqlite")));
    store.updateRequest(*parseUUID(id),
                        {{UpdateRequestData::Field::status(LocalVideoRequest::Status::cancelled)}});
    EXPECT_EQ(first->wait(), 130) << "Its ffmpeg ends with the request.";
    shows("1 requests: " + id + " merge cancelled");

    std::filesystem::remove(file("long.mp4"));
    const auto second = startMerge();
    shows("2 requests: " + id + " merge cancelled, " + std::string(requests("processing")[0]["id"]) +
          " merge processing");
    second->signal(SIGKILL);
    shows("2 requests: " + id + " merge cancelled, " + std::string(second->errors().substr(8, 36)) +
          " merge cancelled");
}

TEST_F(RequestCommandsTest, StopOnInterrupts) {
    const std::string longClip = makeClip({.seconds = 20, .pictures = {{.width = 1280, .height = 720}}});
    {
        Program host(CORVANTA_HOST, {"merge", file("long"), longClip, longClip}, options_);
        const auto size = [this] {
            std::error_code none;
            const auto bytes = std::filesystem::file_size(file("long.mp4"), none);
            return none ? 0 : bytes;
        };
        EXPECT_TRUE(eventually([&] { return size() > 100'000; }));
        const HostRun second = run({"merge", file("folder/../long.mp4"), clip_, clip_, "--force"});
        EXPECT_EQ(second.status, 3);
        EXPECT_THAT(second.errors, HasSubstr("long.mp4 is being written by another corvanta_host\n"));
        host.signal(SIGINT);
        EXPECT_EQ(host.wait(), 130);
        EXPECT_THAT(host.errors(), HasSubstr("corvanta_host: cancelled\n"));
        EXPECT_EQ(requests("cancelled").size(), 1U);
        EXPECT_FALSE(std::filesystem::exists(file("long.mp4")));
    }
    {
        // Slow from when the request is stored: before, each file is asked once.
        const FakeProgram slow("CORVANTA_FFPROBE",
                               "echo >>$here/calls; [ $(wc -l <$here/calls) -gt 2 ] || exec ffprobe \"$@\"\n"
                               "touch $here/started; exec sleep 600\n");
        Program host(CORVANTA_HOST, {"concat", file("x"), clip_, clip_}, options_);
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(slow.file("started")); }));
        host.signal(SIGINT);
        EXPECT_EQ(host.wait(), 130);
        EXPECT_THAT(host.errors(), HasSubstr("corvanta_host: cancelled\n"));
    }
    EXPECT_EQ(requests("cancelled").size(), 2U);

    const auto watched = [this](const std::vector<std::string>& arguments, const Program::Options& options) {
        Program host(CORVANTA_HOST, arguments, options);
        EXPECT_TRUE(eventually([&] { return host.output().ends_with('\n'); }));
        host.signal(SIGTERM);
        EXPECT_EQ(host.wait(), 0);
        return host.output();
    };
    const json all = json::parse(watched({"--json", "watch"}, options_));
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(json::parse(watched({"--json", "watch", all[1]["id"]}, options_)), all[1]);
    const Program::Options empty{.environment = {{"XDG_DATA_HOME", file("empty")}}};
    EXPECT_EQ(watched({"watch"}, empty), "0 requests\n");
    EXPECT_EQ(watched({"--json", "watch"}, empty), "[]\n");
    EXPECT_THAT(watched({"watch"}, options_),
                MatchesRegex("2 requests: [-0-9a-f]+ merge cancelled, [-0-9a-f]+ concat cancelled\n"));
}

} // namespace
} // namespace corvanta::test
