#include "examples/corvanta_host/HostRun.hpp"
#include "support/DecodedMedia.hpp"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>

namespace corvanta::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

// One line with the text at its start.
auto tells(const std::string& text) {
    return testing::AllOf(StartsWith("corvanta_host: " + text), testing::MatchesRegex("[^\n]*\n"));
}

TEST(HostTest, Information) {
    const std::string clip = makeClip({.rotation = -90});
    const std::string sound = makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"});
    const HostRun table = runHost({"info", clip, sound});
    EXPECT_EQ(table.status, 0);
    EXPECT_EQ(table.errors, "");
    for (const std::string& text :
         Words{clip, sound, "120x160 portrait", "30/1 fps  rotation -90", "48000 Hz  2 channels stereo"}) {
        EXPECT_THAT(table.output, HasSubstr(text));
    }
    for (const Words& arguments :
         {Words{"--json", "info", clip, sound}, {"info", "--json", "--verbose", clip, sound}}) {
        const HostRun ended = runHost(arguments);
        EXPECT_EQ(ended.status, 0);
        const json files = json::parse(ended.output);
        ASSERT_EQ(files.size(), 2U);
        EXPECT_EQ(files[0]["path"], clip);
        EXPECT_EQ(files[0]["videos"][0]["rotatedWidth"], 160);
        EXPECT_EQ(files[0]["audios"][0]["sampleRate"], 48000);
        EXPECT_EQ(files[0]["videoSize"], (json{{"width", 120}, {"height", 160}}));
        EXPECT_EQ(files[1]["videos"], json::array());
        EXPECT_EQ(files[1]["hasAudio"], true);
        EXPECT_EQ(ended.errors.empty(), arguments.size() == 4);
    }
}

TEST(HostTest, FilesOfAnyNameAndANoisyProgram) {
    const TemporaryDirectory directory;
    const Program::Options there{.workingDirectory = directory.path()};
    const std::string clip = makeClip({});
    const FakeProgram noisy("CORVANTA_FFMPEG", "echo noise\necho more >&2\nexec ffmpeg \"$@\"\n");
    for (const std::string name : {"-x.mp4", "100% %41?#.mp4", "line\nbreak.mp4", "a:b.mp4"}) {
        SCOPED_TRACE(name);
        std::filesystem::copy_file(clip, directory.file(name));
        EXPECT_EQ(json::parse(runHost({"--json", "info", "--", name}, there).output).size(), 1U);
        const HostRun thumbnail = runHost({"thumbnail", "--at", "0", "--", name, name + "out"}, there);
        EXPECT_EQ(thumbnail.status, 0) << thumbnail.errors;
        EXPECT_EQ(thumbnail.output, directory.file(name + "out.jpg\n"));
    }
    const HostRun made = runHost(
        {"--json", "thumbnail", clip, "-o", "sub/../frame.jpg", "--at", "0:0.5", "--width", "80"}, there);
    EXPECT_EQ(json::parse(made.output), (json{{"path", directory.file("frame.jpg")}}));
    EXPECT_EQ(probed(directory.file("frame.jpg")).videoSize.height, 60);
}

TEST(HostTest, Edits) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({.seconds = 2, .sounds = {{.frequency = 400}}});
    const HostRun ended = runHost(
        {"--json", "edit", "an edit", clip, "--start=0", "--end", "1.5", "--rotate", "90", "--volume", "2"},
        {.workingDirectory = directory.path()});
    ASSERT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(json::parse(ended.output), (json{{"path", directory.file("an edit.mp4")}}));
    const std::string written = directory.file("an edit.mp4");
    EXPECT_NEAR(static_cast<double>(probed(written).durationMillis), 1500, 30);
    EXPECT_EQ(probed(written).rotation(), -90);
    EXPECT_NEAR(decodedSound(written).amplitude(400, 0.5) / decodedSound(clip).amplitude(400, 0.5), 2, 0.06);
}

TEST(HostTest, FailuresAreOneLineThatNamesTheCause) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({});
    const std::string output = directory.file("out");
    const std::string text = directory.file("text.mp4");
    writeFile(text, "no media");
    const std::string invalid = text + ": Invalid data found when processing input\n";
    for (const auto& [arguments, status, errors] : std::vector<std::tuple<Words, int, std::string>>{
             {{"info", "/no/such"}, 3, "inputContainsNonExistingFiles: there is no /no/such\n"},
             {{"info", text}, 3, "getInformationFailed: " + invalid},
             {{"info", clip, "--logged-out"}, 4, "userNotAuthenticated: nobody is logged in\n"},
             {{"thumbnail", "/no/such", "-o", output}, 3, "notFoundVideo: there is no /no/such\n"},
             {{"thumbnail", clip, output, "--at", "0:09"}, 3, "invalidPositionInVideo: 9 s is not within "},
             {{"thumbnail", text, output, "--at", "0"}, 1, invalid},
             {{"thumbnail", clip, directory.file("no/such/out"), "--at", "0"},
              3,
              "there is no folder " + directory.file("no/such\n")},
             {{"edit", clip, "-o", output, "--start", "0", "--end", "9s"},
              3,
              "invalidTrimRange: 0 s to 9 s is no part of a video of 1"}}) {
        const HostRun ended = runHost(arguments);
        EXPECT_EQ(ended.status, status);
        EXPECT_EQ(ended.output, "");
        EXPECT_THAT(ended.errors, tells(errors));
    }
    EXPECT_EQ(json::parse(runHost({"--json", "info", "/no/such"}).output),
              (json{{"error",
                     {{"kind", "refused"},
                      {"name", "inputContainsNonExistingFiles"},
                      {"details", "there is no /no/such"}}}}));
    const HostRun noProgram =
        runHost({"thumbnail", clip, output, "--at", "0"}, {.environment = {{"CORVANTA_FFMPEG", "/no/such"}}});
    EXPECT_EQ(noProgram.status, 1);
    EXPECT_THAT(noProgram.errors,
                tells("thumbnailGenerationFailed: /no/such could not be started: /no/such: No such file"));
    for (const char* place : {"/dev/full", "-"}) {
        const HostRun ended = runHost({"info", clip}, {.standardOutput = place});
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.errors, tells("standard output: "));
        EXPECT_THAT(runHost({"--json", "info", clip}, {.standardOutput = place}).errors,
                    HasSubstr("\"details\": \"standard output: "));
    }
}

// Before anything is run, stored or removed.
TEST(HostTest, AnEditTellsWhatCopyingWouldLose) {
    const TemporaryDirectory directory;
    const Program::Options there{.environment = {{"XDG_DATA_HOME", directory.file("data")}},
                                 .workingDirectory = directory.path()};
    const std::string codecs = "-c:v libx264 -preset ultrafast -g 30 -pix_fmt yuv420p -c:a aac -bf ";
    const std::string plain = makeClip({.seconds = 3, .codecs = codecs + "0"});
    const std::string bFrames = makeClip({.seconds = 3, .codecs = codecs + "2"});
    const std::string phone = makeClip({.seconds = 3, .codecs = codecs + "0", .rotation = -90});
    const std::string turned =
        "the clip's own turn isn't kept: --rotate 90 keeps it, and so does --cut exact";
    for (const auto& [clip, start, more, note] :
         std::vector<std::tuple<std::string, std::string, Words, std::string>>{
             {plain, "0", {}, ""},
             {plain,
              "0.5",
              {},
              "copying starts the picture 0.50 s late: --cut exact keeps all of it, and encodes 0.50 s"},
             {plain, "2.5", {}, "copying keeps no picture of this range"},
             {bFrames, "0", {}, "copying loses the first 1.00 s of the picture"},
             {bFrames, "0", {"--cut", "exact"}, ""},
             {phone, "0", {}, turned},
             {phone, "0", {"--rotate", "90"}, ""}}) {
        Words arguments{"edit", clip, "-o", "e", "--force", "--end", "2.9", "--start", start};
        arguments.insert(arguments.end(), more.begin(), more.end());
        SCOPED_TRACE(testing::PrintToString(arguments));
        const std::string errors = runHost(arguments, there).errors;
        EXPECT_THAT(errors, testing::HasSubstr(note));
        EXPECT_TRUE(!note.empty() ||
                    (errors.find("copying") == std::string::npos && errors.find(turned) == std::string::npos))
            << errors;
    }
}

TEST(HostTest, WhatCannotBeFollowedIsToldInWords) {
    const TemporaryDirectory directory;
    const Program::Options there{.environment = {{"XDG_DATA_HOME", directory.file("data")}},
                                 .workingDirectory = directory.path()};
    const std::string clip = makeClip({});
    for (const std::string name : {"a 1.mp4", "a 2.mp4", "a 3.mp4", "kept.mp4"}) {
        std::filesystem::copy_file(clip, directory.file(name));
    }
    const auto with = [](Words words, const Words& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    };
    const Words edit = {"edit", "a 1.mp4", "-o", "e", "--start", "0", "--end", "1"};
    const Words merge = {"merge", "a 1.mp4", "a 2.mp4", "-o", "m"};
    for (const auto& [arguments, status, errors] : std::vector<std::tuple<Words, int, std::string>>{
             {{"info"}, 2, "FILE is required"},
             {{"infos", clip}, 2, R"(there is no command "infos": do you mean "info"?)"},
             {{"help", "mrge"}, 2, R"(do you mean "merge"?)"},
             {{"info", "--no-such", clip}, 2, "--no-such"},
             {{"thumbnail", clip, "x", "--at", "soon"}, 2, R"(1500ms or 0:01.5, not "soon")"},
             {{"thumbnail", clip, "x", "--width", "0"}, 2, "--width takes 1 to 65500 pixels, not 0"},
             {{"contact-sheet", clip, "-o", "s", "--columns", "0"}, 3, "invalidThumbnailWidth: 0 columns"},
             {{"contact-sheet", clip, "-o", "s.png"}, 2, "name it s.jpg"},
             {with(edit, {"--rotate", "45"}), 2, "--rotate takes quarter turns"},
             {with(edit, {"--volume", "-1"}), 2, "--volume takes a factor from 0 up, not -1"},
             {with(merge, {"--video-track", "5:0"}), 2, "there is no file 5: the 2 files are counted from 0"},
             {with(merge, {"--video-track", "1:7"}), 2,
              "a 2.mp4 has no video stream 7: its video streams are 0"},
             {with(merge, {"--video-track", "0-0"}), 2, R"("0-0" selects no stream)"},
             {with(merge, {"--width", "127"}), 2, "--width takes 128 to 8190 pixels, not 127"},
             {with(merge, {"--height", "1e18"}), 2, "--height takes 128 to 8190 pixels, not 1e+18"},
             {with(merge, {"--crf", "60"}), 2, "the crf of h264 goes from 0 to 51, not 60"},
             {with(merge, {"--quality", "high", "--crf", "20"}), 2, "only one of them can be set"},
             {with(merge, {"--encoder", "libx265"}), 2, "an encoder of h264 is one of h264_nvenc, "},
             {with(merge, {"--audio-bitrate", "a lot"}), 2, R"(such as 192k, not "a lot")"},
             {with(merge, {"--codec", "x265"}), 2, R"(is none of mpeg4,h264,hevc,av1: do you mean "hevc"?)"},
             {with(merge, {"--heigth", "2"}), 2, R"(--heigth: do you mean "--height"?)"},
             {with(merge, {"--force", "--no-clobber"}), 2, "--force excludes --no-clobber"},
             {{"tracks", "add-vido", "a 1.mp4"}, 2, R"(do you mean "add-video"?)"},
             {{"clean", "a 1.mp4", "sub/a 1.mp4", "-o", "sub/"}, 2, "would be written to the same place"},
             {with(merge, {"--width", "641"}), 2, "--width takes an even number of pixels, not 641"},
             {{"encode", "a 1.mp4", "a 2.mp4", "-o", "x"}, 2, "encode reads one file, and 2 are given"},
             {{"concat", "a 1.mp4", "a 2.mp4", "a 3.mp4"}, 2, "a 1.mp4 is there already and may be meant as"},
             {{"concat", "--force", "a 1.mp4", "a 2.mp4", "a 3.mp4"}, 2, "name the output with -o"},
             {{"merge", "a 1.mp4", "a 2.mp4", "-o", "film.mkv"}, 2, "name it film.mp4"},
             {{"encode", "a 1.mp4", "-o", "kept", "--no-clobber"},
              3,
              "kept.mp4 is there already; --force writes over it"},
             {{"encode", "/nothere.mp4", "-o", "kept", "--force"},
              3,
              "notFoundVideo: there is no /nothere.mp4"},
             {{"edit", "a 1.mp4", "-o", "kept", "--force", "--start", "2", "--end", "1"},
              3,
              "invalidTrimRange: "},
             {{"concat", "a 1.mp4", "a 2.mp4", "-o", "a 2.mp4", "--force"},
              3,
              "a 2.mp4 is read: it can't be"},
             {{"concat", "a 1.mp4", "a 2.mp4", "-o", "none/"}, 3, "there is no folder"},
             {{"requests", "--status", "done"}, 2, "--status"},
             {{"process", "x"}, 2, R"("x" is no request id)"},
             {{"tracks"}, 2, "subcommand"},
             {{}, 2, "subcommand"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const HostRun ended = runHost(arguments, there);
        EXPECT_EQ(ended.status, status);
        EXPECT_EQ(ended.output, "");
        EXPECT_THAT(ended.errors, HasSubstr(errors));
    }
    for (const auto& [jobs, errors] : std::vector<std::pair<std::string, std::string>>{
             {"{", "holds no JSON list of jobs"},
             {R"([["clean", "a 1.mp4", "-o", "kept", "--force"], "clean"])",
              "job 2: not a list of a command's"},
             {R"([["clean", "a 1.mp4", "-o", "kept", "--force"], ["infos"]])",
              R"(job 2: there is no command "infos")"},
             {R"([["clean", "a 1.mp4", "-o", "kept", "--focre"]])", R"(do you mean "--force"?)"},
             {R"([["watch"]])", "job 1: watch can't be one of several"}}) {
        writeFile(directory.file("jobs.json"), jobs);
        const HostRun ended = runHost({"jobs", "jobs.json"}, there);
        EXPECT_EQ(ended.status, 2) << jobs;
        EXPECT_THAT(ended.errors, HasSubstr(errors));
    }
    EXPECT_EQ(runHost({"requests"}, there).output, "");
    for (const std::string name : {"a 1.mp4", "a 2.mp4", "a 3.mp4", "kept.mp4"}) {
        EXPECT_EQ(readFile(directory.file(name)), readFile(clip));
    }
    for (const Words& help : {Words{"--help"}, {"help", "merge"}, {"--version"}}) {
        EXPECT_EQ(runHost(help).status, 0);
    }
}

TEST(HostTest, DoctorTellsWhatIsMissing) {
    const TemporaryDirectory directory;
    const Program::Options there{.environment = {{"XDG_DATA_HOME", directory.file("data")}}};
    const auto state = [](const json& told, const std::string& name) {
        for (const json& check : told["checks"]) {
            if (check["name"] == name) {
                return std::string(check["state"]);
            }
        }
        return std::string();
    };
    const HostRun healthy = runHost({"--json", "doctor"}, there);
    EXPECT_EQ(healthy.status, 0) << healthy.output;
    EXPECT_EQ(json::parse(healthy.output)["works"], true);
    EXPECT_EQ(namesIn({directory.path()}), Words{"data"});
    const FakeProgram poor("CORVANTA_FFMPEG", R"(case "$*" in
        *-encoders*) ffmpeg "$@" | grep -v libx265;;
        *-filters*) ffmpeg "$@" | grep -v showwavespic;;
        *) exec ffmpeg "$@";; esac)");
    Program::Options lacking = there;
    lacking.environment["CORVANTA_RESOURCES"] = directory.path();
    const HostRun ended = runHost({"--json", "doctor"}, lacking);
    EXPECT_EQ(ended.status, 1);
    const json told = json::parse(ended.output);
    EXPECT_EQ(told["works"], false);
    for (const auto& [name, expected] : {std::pair("encoders", "limited"),
                                         {"filters", "missing"},
                                         {"containers", "ok"},
                                         {"store", "ok"},
                                         {"model", "missing"}}) {
        EXPECT_EQ(state(told, name), expected) << name;
    }
    const FakeProgram none("CORVANTA_FFMPEG", "exit 1\n");
    const HostRun text = runHost({"doctor"}, there);
    EXPECT_THAT(text.output, HasSubstr("missing ffmpeg "));
    EXPECT_THAT(text.errors, tells("something that is needed is missing"));
}

TEST(HostTest, FoldersAndStoresThatCannotBeUsed) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({});
    const Program::Options nowhere{
        .environment = {{"XDG_DATA_HOME", "/proc/none"}, {"TMPDIR", directory.path()}}};
    for (const auto& [arguments, status, errors] : std::vector<std::tuple<Words, int, std::string>>{
             {{"info", clip}, 0, ""},
             {{"encode", clip, "-o", directory.file("e")}, 0, "the request is not kept: /proc/none/"},
             {{"edit", clip, "-o", directory.file("x"), "--range", "0.1-0.2", "--range", "0.5-0.6"}, 0, ""},
             {{"requests"}, 3, "can't be written to: No such file or directory; no requests are kept there"},
             {{"doctor"}, 1, "something that is needed is missing"}}) {
        const HostRun ended = runHost(arguments, nowhere);
        EXPECT_EQ(ended.status, status) << ended.errors;
        EXPECT_THAT(ended.errors, HasSubstr(errors));
    }
    EXPECT_THAT(namesIn({directory.path()}), testing::UnorderedElementsAre("e.mp4", "x.mp4"));
    std::filesystem::create_directories(directory.file("data/corvanta-sdk-video"));
    writeFile(directory.file("data/corvanta-sdk-video/video-store.sqlite"), std::string(9999, 'x'));
    const HostRun broken =
        runHost({"--json", "info", clip}, {.environment = {{"XDG_DATA_HOME", directory.file("data")}}});
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.errors, HasSubstr("Fatal error: "));
    EXPECT_EQ(json::parse(broken.output)["error"]["name"], "fatalError");
}

TEST(HostTest, AnInterruptEndsTheRunASecondOneTheHostAndItsDeathTheChild) {
    const TemporaryDirectory directory;
    // A child that takes its time gives the second signal the chance to end the program as usual.
    for (const auto& [onSignal, signals] : {std::pair("exit 1", std::vector{SIGTERM}),
                                            {":", std::vector{SIGINT, SIGINT}},
                                            {":", std::vector{SIGKILL}}}) {
        const FakeProgram waiting("CORVANTA_FFMPEG", std::string("trap ': >\"$here/asked\"; ") + onSignal +
                                                         "' TERM\n: >\"$here/started\"\n"
                                                         "while :; do sleep 0.05; done\n");
        Program host(CORVANTA_HOST, {"thumbnail", makeClip({}), directory.file("out"), "--at", "0"});
        ASSERT_TRUE(eventually([&] { return std::filesystem::exists(waiting.file("started")); }));
        const auto children = childrenOf(host.pid());
        ASSERT_EQ(children.size(), 1U);
        for (const int signal : signals) {
            host.signal(signal);
            ASSERT_TRUE(signal == SIGKILL ||
                        eventually([&] { return std::filesystem::exists(waiting.file("asked")); }));
        }
        const bool killed = signals.front() != SIGTERM;
        EXPECT_EQ(host.wait(), killed ? -signals.front() : 128 + SIGTERM);
        EXPECT_TRUE(eventually([&] { return !isAlive(children.front()); }));
        EXPECT_EQ(host.output(), "");
        EXPECT_EQ(host.errors(), killed ? "" : "corvanta_host: cancelled\n");
    }
}

} // namespace
} // namespace corvanta::test
