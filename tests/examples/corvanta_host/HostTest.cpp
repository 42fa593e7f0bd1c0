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
        EXPECT_EQ(files[0]["path"], "file://" + clip);
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
    const HostRun made =
        runHost({"--json", "thumbnail", clip, "sub/../frame", "--at", "500.5", "--width", "80"}, there);
    EXPECT_EQ(json::parse(made.output), (json{{"generatedThumbnailURL", directory.file("frame.jpg")}}));
    EXPECT_EQ(probed(directory.file("frame.jpg")).videoSize.height, 60);
}

TEST(HostTest, Edits) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({.seconds = 2, .sounds = {{.frequency = 400}}});
    const HostRun ended = runHost(
        {"--json", "edit", "an edit", clip, "--start=0", "--end", "1.5", "--rotate", "90", "--volume", "2"},
        {.workingDirectory = directory.path()});
    ASSERT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(json::parse(ended.output), (json{{"editedVideoURL", directory.file("an%20edit.mp4")}}));
    const std::string written = directory.file("an edit.mp4");
    EXPECT_NEAR(static_cast<double>(probed(written).durationMillis), 1500, 30);
    EXPECT_EQ(probed(written).rotation(), -90);
    EXPECT_NEAR(decodedSound(written).amplitude(400, 0.5) / decodedSound(clip).amplitude(400, 0.5), 2, 0.06);
}

TEST(HostTest, FailuresAreOneLineWithTheCaseName) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({});
    const std::string output = directory.file("out");
    const std::string text = directory.file("text.mp4");
    writeFile(text, "no media");
    for (const auto& [arguments, errors] : std::vector<std::pair<Words, std::string>>{
             {{"info", "/no/such"},
              "invalidInputFiles(inputContainsNonExistingFiles): there is no /no/such\n"},
             {{"info", text},
              "getInformationFailed: " + text + ": Invalid data found when processing input\n"},
             {{"info", clip, "--logged-out"}, "userNotAuthenticated: nobody is logged in\n"},
             {{"thumbnail", clip, output, "--width", "-1"}, "invalidThumbnailWidth: -1 pixels\n"},
             {{"thumbnail", clip, output, "--height=-1"}, "invalidThumbnailHeight"},
             {{"thumbnail", text, output, "--at", "0"}, "AssetReader error "},
             {{"thumbnail", clip, directory.file("no/such/out"), "--at", "0"}, "thumbnailGenerationFailed: "},
             {{"--json", "edit", directory.file("no/out"), clip, "--start", "0", "--end", "1"},
              "trimFailed: " + directory.file("no/out.mp4") + ": No such file or directory\n"}}) {
        const HostRun ended = runHost(arguments);
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.output, "");
        EXPECT_THAT(ended.errors, tells(errors));
    }
    const HostRun noProgram = runHost({"thumbnail", clip, output, "--at", "0"},
                                      {.environment = {{"CORVANTA_FFMPEG", "/no/such/ffmpeg"}}});
    EXPECT_EQ(noProgram.status, 1);
    EXPECT_THAT(noProgram.errors, tells("thumbnailGenerationFailed"));
    EXPECT_THAT(noProgram.errors, HasSubstr("/no/such/ffmpeg could not be started: "));
    for (const Words& wrong : {Words{"info"},
                               {"nonsense"},
                               {"info", "--no-such", clip},
                               {"thumbnail", clip, output, "--at", "soon"}}) {
        const HostRun ended = runHost(wrong);
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.output, "");
        EXPECT_NE(ended.errors, "");
    }
    EXPECT_EQ(runHost({"--help"}).status, 0);
    for (const char* place : {"/dev/full", "-"}) {
        const HostRun ended = runHost({"info", clip}, {.standardOutput = place});
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.errors, tells("standard output: "));
    }
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
        EXPECT_EQ(host.wait(), killed ? -signals.front() : 1);
        EXPECT_TRUE(eventually([&] { return !isAlive(children.front()); }));
        EXPECT_EQ(host.output(), "");
        EXPECT_THAT(host.errors(), StartsWith(killed ? "" : "corvanta_host: thumbnailGenerationFailed: "));
    }
}

} // namespace
} // namespace corvanta::test
