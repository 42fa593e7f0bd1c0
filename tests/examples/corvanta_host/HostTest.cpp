#include "support/DecodedMedia.hpp"
#include "support/Processes.hpp"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>
#include <optional>

namespace corvanta::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

struct Ended {
    int status;
    std::string output;
    std::string errors;
};

Ended runHost(const std::vector<std::string>& arguments, const Program::Options& options = {}) {
    Program host(CORVANTA_HOST, arguments, options);
    const int status = host.wait();
    return {status, host.output(), host.errors()};
}

bool isOneLine(const std::string& text) {
    return text.ends_with('\n') && std::count(text.begin(), text.end(), '\n') == 1;
}

TEST(HostTest, Information) {
    const std::string clip = makeClip({.rotation = -90});
    const std::string sound = makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"});
    const Ended table = runHost({"info", clip, sound});
    EXPECT_EQ(table.status, 0);
    EXPECT_EQ(table.errors, "");
    for (const std::string& text :
         {clip, sound, std::string("120x160 portrait"), std::string("30/1 fps  rotation -90"),
          std::string("48000 Hz  2 channels stereo")}) {
        EXPECT_THAT(table.output, HasSubstr(text));
    }
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--json", "info", clip, sound},
                                                      {"info", "--json", "--verbose", clip, sound}}) {
        const Ended ended = runHost(arguments);
        EXPECT_EQ(ended.status, 0);
        const json files = json::parse(ended.output);
        ASSERT_EQ(files.size(), 2U);
        EXPECT_EQ(files[0]["path"], "file://" + clip);
        EXPECT_EQ(files[0]["videos"][0]["rotatedWidth"], 160);
        EXPECT_EQ(files[0]["videos"][0]["rotation"], -90);
        EXPECT_EQ(files[0]["audios"][0]["sampleRate"], 48000);
        EXPECT_EQ(files[0]["videoSize"], (json{{"width", 120}, {"height", 160}}));
        EXPECT_EQ(files[0]["orientation"], "portrait");
        EXPECT_EQ(files[1]["videos"], json::array());
        EXPECT_EQ(files[1]["hasAudio"], true);
        EXPECT_EQ(ended.errors.empty(), arguments.size() == 4);
    }
}

TEST(HostTest, OddNames) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({});
    for (const std::string& name : {std::string("-x.mp4"), std::string("100% %41?#.mp4"),
                                    std::string("line\nbreak.mp4"), std::string("a:b.mp4")}) {
        std::filesystem::copy_file(clip, directory.file(name));
        const Program::Options there{.workingDirectory = directory.path()};
        const Ended ended = runHost({"--json", "info", "--", name}, there);
        EXPECT_EQ(ended.status, 0) << ended.errors;
        EXPECT_EQ(json::parse(ended.output).size(), 1U);
        const Ended thumbnail = runHost({"thumbnail", "--at", "0", "--", name, name + "out"}, there);
        EXPECT_EQ(thumbnail.status, 0) << thumbnail.errors;
        EXPECT_EQ(thumbnail.output, directory.file(name + "out.jpg\n"));
        EXPECT_THAT(readFile(directory.file(name + "out.jpg")), StartsWith("\xff\xd8\xff"));
    }
}

TEST(HostTest, Thumbnails) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({});
    const FakeProgram noisy("CORVANTA_FFMPEG", "echo noise\necho more >&2\nexec ffmpeg \"$@\"\n");
    const Program::Options there{.workingDirectory = directory.path()};
    const Ended made =
        runHost({"--json", "thumbnail", clip, "sub/../frame", "--at", "500.5", "--width", "80"}, there);
    EXPECT_EQ(made.status, 0) << made.errors;
    EXPECT_EQ(json::parse(made.output), (json{{"generatedThumbnailURL", directory.file("frame.jpg")}}));
    EXPECT_EQ(probed(directory.file("frame.jpg")).videoSize.height, 60);
    EXPECT_EQ(runHost({"thumbnail", clip, directory.file("percent%20%"), "--at=0"}).output,
              directory.file("percent%20%.jpg\n"));
}

TEST(HostTest, Edits) {
    const TemporaryDirectory directory;
    const Program::Options there{.workingDirectory = directory.path()};
    const std::string clip = makeClip({.seconds = 2, .sounds = {{.frequency = 400}}, .rotation = -90});
    const std::string silent = makeClip({.seconds = 2, .sounds = {}});
    const std::string sound =
        makeClip({.seconds = 2, .pictures = {}, .container = "m4a", .codecs = "-c:a aac"});
    const std::string vp8 =
        makeClip({.container = "webm", .codecs = "-c:v libvpx -deadline realtime -c:a libvorbis"});
    struct Case {
        std::string file;
        std::vector<std::string> options;
        std::int64_t millis;
        std::int64_t rotation;
        bool hasPicture;
        /// As a factor of the source's; absent without sound.
        std::optional<double> loudness;
    };
    const double loud = decodedSound(clip).amplitude(400, 0.5);
    for (const Case& expected : std::vector<Case>{
             {clip, {"--start", "0", "--end", "2", "--volume", "2"}, 2000, 0, true, 2},
             {clip, {"--start=1", "--end=1.5", "--rotate=90"}, 500, -90, true, 1},
             {clip, {"--end", "1", "--start", "0", "--rotate", "-90", "--volume", "0"}, 1000, 90, true, 0},
             {silent, {"--start", "0", "--end", "1", "--rotate", "180"}, 1000, -180, true, {}},
             {sound, {"--start", "0.5", "--end", "2"}, 1500, 0, false, {}},
         }) {
        const std::string written = directory.file("an edit.mp4");
        std::vector<std::string> arguments = {"--json", "edit", "an edit", expected.file};
        arguments.insert(arguments.end(), expected.options.begin(), expected.options.end());
        const Ended ended = runHost(arguments, there);
        ASSERT_EQ(ended.status, 0) << ended.errors;
        EXPECT_EQ(json::parse(ended.output), (json{{"editedVideoURL", directory.file("an%20edit.mp4")}}));
        const CorvantaSdkVideoInformation information = probed(written);
        EXPECT_NEAR(static_cast<double>(information.durationMillis), static_cast<double>(expected.millis),
                    30);
        EXPECT_EQ(information.rotation(), expected.rotation);
        EXPECT_EQ(!information.videos.empty(), expected.hasPicture);
        EXPECT_EQ(information.hasAudio(), expected.file != silent);
        if (expected.loudness) {
            EXPECT_NEAR(decodedSound(written).amplitude(400, 0.25) / loud, *expected.loudness, 0.03);
        }
        std::filesystem::remove(written);
    }

    const std::string own = directory.file("own");
    std::filesystem::copy_file(clip, own + ".mp4");
    for (const auto& [arguments, error] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{own, own + ".mp4", "--start", "0", "--end", "1"}, "trimFailed: Error editing video. "},
             {{"x", vp8, "--start", "0", "--end", "0.5"}, "trimFailed: Error editing video. "},
             {{"x", clip, "--start", "1", "--end", "1"}, "invalidTrimRange"},
             {{"x", clip, "--start", "0", "--end", "60"}, "invalidTrimRange"},
             {{"x", clip, "--start", "nan", "--end", "1"}, "invalidTrimRange"},
             {{"x", "/no/such.mp4", "--start", "0", "--end", "1"}, "notFoundVideo"},
             {{"x", clip, "--start", "0", "--end", "1", "--logged-out"}, "userNotAuthenticated: "},
         }) {
        std::vector<std::string> words = {"edit"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const Ended ended = runHost(words, there);
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.output, "");
        EXPECT_THAT(ended.errors, StartsWith("corvanta_host: " + error));
        EXPECT_TRUE(isOneLine(ended.errors)) << ended.errors;
    }
    EXPECT_EQ(readFile(own + ".mp4"), readFile(clip));
}

TEST(HostTest, FailuresAreOneLineWithTheCaseName) {
    const TemporaryDirectory directory;
    const std::string clip = makeClip({});
    const std::string output = directory.file("out");
    writeFile(directory.file("text.mp4"), "no media");
    struct Case {
        std::vector<std::string> arguments;
        std::string errors;
    };
    for (const Case& expected : {
             Case{{"info", "/no/such\nfile"}, "invalidInputFiles(inputContainsNonExistingFiles)"},
             {{"info", directory.file("text.mp4")},
              "getInformationFailed: Error getting video info: file://"},
             {{"info", clip, "--logged-out"},
              "userNotAuthenticated: Validate authentication failed: SDK not authenticated"},
             {{"--logged-out", "thumbnail", clip, output}, "userNotAuthenticated: "},
             {{"thumbnail", "/no/such", output}, "notFoundVideo"},
             {{"thumbnail", clip, output, "--width", "-1"}, "invalidThumbnailWidth"},
             {{"thumbnail", clip, output, "--height=-1"}, "invalidThumbnailHeight"},
             {{"thumbnail", clip, output, "--at", "-1"}, "invalidPositionInVideo"},
             {{"thumbnail", clip, output, "--at", "1e9"}, "invalidPositionInVideo"},
             {{"thumbnail", directory.file("text.mp4"), output, "--at", "0"}, "AssetReader error "},
             {{"thumbnail", clip, directory.file("no/such/out"), "--at", "0"},
              "thumbnailGenerationFailed: Error creating thumbnail"},
             {{"thumbnail", clip, output + "%d", "--at", "0"}, "thumbnailGenerationFailed: "},
         }) {
        for (const bool asJson : {false, true}) {
            auto arguments = expected.arguments;
            if (asJson) {
                arguments.emplace_back("--json");
            }
            const Ended ended = runHost(arguments);
            EXPECT_EQ(ended.status, 1);
            EXPECT_EQ(ended.output, "");
            EXPECT_THAT(ended.errors, StartsWith("corvanta_host: " + expected.errors));
            EXPECT_TRUE(isOneLine(ended.errors)) << ended.errors;
        }
    }
    const Ended noProgram = runHost({"thumbnail", clip, output, "--at", "0"},
                                    {.environment = {{"CORVANTA_FFMPEG", "/no/such/ffmpeg"}}});
    EXPECT_EQ(noProgram.status, 1);
    EXPECT_THAT(noProgram.errors, HasSubstr("thumbnailGenerationFailed"));
    EXPECT_THAT(noProgram.errors, HasSubstr("/no/such/ffmpeg could not be started: "));
    EXPECT_TRUE(isOneLine(noProgram.errors)) << noProgram.errors;
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{},
                                                  {"info"},
                                                  {"nonsense"},
                                                  {"info", "--no-such", clip},
                                                  {"thumbnail", clip},
                                                  {"thumbnail", clip, output, "--at", "soon"}}) {
        const Ended ended = runHost(wrong);
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.output, "");
        EXPECT_NE(ended.errors, "");
    }
    EXPECT_EQ(runHost({"--help"}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(output + ".jpg"));
}

TEST(HostTest, ResultsThatCannotBeWrittenAreAFailure) {
    for (const char* place : {"/dev/full", "-"}) {
        const Ended ended = runHost({"info", makeClip({})}, {.standardOutput = place});
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.errors, StartsWith("corvanta_host: standard output: "));
    }
}

TEST(HostTest, InterruptsEndTheRunAndItsChild) {
    const std::string clip = makeClip({});
    const TemporaryDirectory directory;
    const FakeProgram waiting("CORVANTA_FFMPEG", ": >\"$here/started\"\nexec sleep 1000\n");
    const FakeProgram waitingProbe("CORVANTA_FFPROBE", ": >\"$here/started\"\nexec sleep 1000\n");
    struct Case {
        std::vector<std::string> arguments;
        std::string started;
        int signal;
        std::string errors;
    };
    const std::vector<std::string> thumbnail = {"thumbnail", clip, directory.file("out"), "--at", "0"};
    for (const Case& expected :
         {Case{thumbnail, waiting.file("started"), SIGINT, "thumbnailGenerationFailed: "},
          {thumbnail, waiting.file("started"), SIGTERM, "thumbnailGenerationFailed: "},
          {{"info", clip, clip}, waitingProbe.file("started"), SIGINT, "getInformationFailed: "}}) {
        std::filesystem::remove(expected.started);
        Program host(CORVANTA_HOST, expected.arguments);
        ASSERT_TRUE(eventually([&] { return std::filesystem::exists(expected.started); }));
        const auto children = childrenOf(host.pid());
        ASSERT_EQ(children.size(), 1U);
        host.signal(expected.signal);
        EXPECT_EQ(host.wait(), 1);
        EXPECT_TRUE(eventually([&] { return !isAlive(children.front()); }));
        EXPECT_EQ(host.output(), "");
        EXPECT_THAT(host.errors(), StartsWith("corvanta_host: " + expected.errors));
        EXPECT_TRUE(isOneLine(host.errors())) << host.errors();
    }
    // A child that takes its time gives the second one the chance to end the program as usual.
    const FakeProgram stubborn(
        "CORVANTA_FFMPEG",
        "trap ': >\"$here/asked\"' TERM\n: >\"$here/started\"\nwhile :; do sleep 0.05; done\n");
    Program host(CORVANTA_HOST, thumbnail);
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(stubborn.file("started")); }));
    const auto children = childrenOf(host.pid());
    ASSERT_EQ(children.size(), 1U);
    host.signal(SIGINT);
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(stubborn.file("asked")); }));
    host.signal(SIGINT);
    EXPECT_EQ(host.wait(), -SIGINT);
    EXPECT_TRUE(eventually([&] { return !isAlive(children.front()); }));
}

} // namespace
} // namespace corvanta::test
