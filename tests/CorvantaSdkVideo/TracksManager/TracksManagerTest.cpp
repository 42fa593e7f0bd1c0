#include <CorvantaSdkVideo/TracksManager/TracksManager.hpp>

#include "support/MediaFixtures.hpp"

#include <platform/Directories.hpp>
#include <platform/Errors.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {
namespace {

using test::Clip;
using test::makeClip;
using test::TemporaryDirectory;

URL fileURL(const std::string& path) { return URL::fromFilePath(path); }

TEST(FFMPEGVideoTracksCommandGenerator, WritesTheScripts) {
    const FFMPEGVideoTracksCommandGenerator generator;
    const URL input = fileURL("/v/my clip.mp4");
    const URL output = fileURL("/v/new clip.mp4");
    const std::vector<std::pair<std::int64_t, std::string>> durations = {
        {1500, "1.5"}, {3000, "3.0"},         {1, "0.001"},
        {0, "0.0"},    {86400000, "86400.0"}, {16777217, "16777.217"},
    };
    for (const auto& [milliseconds, seconds] : durations) {
        EXPECT_EQ(generator.createVideoTrackCommand(input, milliseconds, 320, 240),
                  "-y -f lavfi -i color=c=red:s=320x240:d=" + seconds +
                      R"( -vf "format=yuv420p" -c:v mpeg4 -r 30 -g 30 -b:v 500k "/v/my clip.mp4")");
        EXPECT_EQ(generator.createAudioTrackCommand(input, milliseconds),
                  "-y -f lavfi -i anullsrc=channel_layout=stereo:sample_rate=44100:duration=" + seconds +
                      R"( -c:a aac "/v/my clip.mp4")");
    }
    EXPECT_EQ(generator.generateAddVideoTrackCommand("/a b", "/t", "/c"),
              R"(-y -i "/a b" -i "/t" -map 0:v -map 0:a -map 1:v -c:v copy -c:a copy "/c")");
    EXPECT_EQ(generator.generateAddAudioTrackCommand("/a b", "/t", "/c"),
              R"(-y -i "/a b" -i "/t" -map 0:v -map 0:a -map 1:a -c:v copy -c:a copy "/c")");
    EXPECT_EQ(generator.generateRemoveVideoTrackCommand(input, output),
              R"(-y -i "/v/my clip.mp4" -vn -c:a copy "/v/new clip.mp4")");
    EXPECT_EQ(generator.generateRemoveAudioTrackCommand(input, output),
              "-y -i file:///v/my%20clip.mp4 -an -c:v copy file:///v/new%20clip.mp4");
}

class CountingExecutor : public FFMPEGCommandExecutorImplementation {
  public:
    Task<> executeFFMPEGCommand(std::string command, OnUpdateSessionId onUpdateSessionId) override {
        ++runs;
        return FFMPEGCommandExecutorImplementation::executeFFMPEGCommand(std::move(command),
                                                                         std::move(onUpdateSessionId));
    }

    int runs = 0;
};

class TracksManagerTest : public testing::Test {
  protected:
    TracksManagerTest() {
        setenv("XDG_DATA_HOME", directory_.file("data").c_str(), 1);
        setenv("CORVANTA_FFMPEG", "ffmpeg", 1);
    }

    std::size_t temporaryFiles() const {
        const std::filesystem::path documents = Directories::documents().path();
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(documents),
                                                      std::filesystem::directory_iterator()));
    }

    std::optional<PlatformError> errorOf(Task<> task) const {
        try {
            runBlocking(std::move(task));
        } catch (const PlatformError& error) {
            return error;
        }
        return std::nullopt;
    }

    TemporaryDirectory directory_;
    std::shared_ptr<CountingExecutor> executor_ = std::make_shared<CountingExecutor>();
    TracksManager manager_{executor_};
};

std::string contentsOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const std::string& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

TEST_F(TracksManagerTest, ChangesTheTracksOfRealFiles) {
    const URL clip = fileURL(makeClip({.seconds = 2}));
    const URL rich = fileURL(makeClip({.pictures = {{}, {.width = 64, .height = 64}}, .sounds = {{}, {}}}));
    const URL output = fileURL(directory_.file("an output.mp4"));
    struct Case {
        std::string name;
        std::function<Task<>()> run;
        std::vector<std::int64_t> videoDurations;
        std::vector<std::int64_t> audioDurations;
    };
    const std::vector<Case> cases = {
        {"add video",
         [&] { return manager_.addVideoTrack(clip, output, 1500, 320, 242); },
         {2000, 1500},
         {2000}},
        {"add video to many",
         [&] { return manager_.addVideoTrack(rich, output, 3000, 128, 128); },
         {1000, 1000, 3000},
         {1000, 1000}},
        {"add audio", [&] { return manager_.addAudioTrack(clip, output, 3000); }, {2000}, {2000, 3000}},
        {"add audio to many",
         [&] { return manager_.addAudioTrack(rich, output, 500); },
         {1000, 1000},
         {1000, 1000, 500}},
        {"remove video", [&] { return manager_.removeVideoTrack(rich, output); }, {}, {1000}},
        {"remove audio", [&] { return manager_.removeAudioTrack(rich, output); }, {1000}, {}},
    };
    for (const Case& surgery : cases) {
        SCOPED_TRACE(surgery.name);
        write(output.path(), "an older file");
        runBlocking(surgery.run());
        const CorvantaSdkVideoInformation info = test::probed(output.path());
        ASSERT_EQ(info.videos.size(), surgery.videoDurations.size());
        ASSERT_EQ(info.audios.size(), surgery.audioDurations.size());
        for (std::size_t track = 0; track < info.videos.size(); ++track) {
            EXPECT_LE(std::abs(info.videos[track].durationMillis - surgery.videoDurations[track]), 34);
        }
        for (std::size_t track = 0; track < info.audios.size(); ++track) {
            EXPECT_LE(std::abs(info.audios[track].durationMillis - surgery.audioDurations[track]), 24);
        }
        EXPECT_EQ(temporaryFiles(), 0U);
    }
    runBlocking(manager_.addVideoTrack(clip, output, 1500, 320, 242));
    const CorvantaSdkVideoInformation info = test::probed(output.path());
    EXPECT_EQ(info.videos[1].width, 320);
    EXPECT_EQ(info.videos[1].height, 242);
    EXPECT_EQ(info.videos[1].codec, "mpeg4");
    EXPECT_EQ(info.videos[0], test::probed(clip.path()).videos[0]);
    EXPECT_TRUE(isNear(test::meanColour(output.path(), 1.4, {}, 1), {254, 0, 0}));
    EXPECT_TRUE(isNear(test::meanColour(output.path(), 1, {}, 0), test::meanColour(clip.path(), 1), 0.01));
}

TEST_F(TracksManagerTest, PassesOnWhatFFmpegRefusesAndLeavesTheTemporaryFile) {
    const URL clip = fileURL(makeClip({}));
    const URL silent = fileURL(makeClip({.sounds = {}}));
    const URL blind = fileURL(makeClip({.pictures = {}}));
    const URL missing = fileURL(directory_.file("missing.mp4"));
    const URL output = fileURL(directory_.file("out.mp4"));
    const auto refused = std::optional(PlatformError("COMPLETED", 1));
    EXPECT_EQ(errorOf(manager_.addAudioTrack(silent, output, 500)), refused);
    EXPECT_EQ(temporaryFiles(), 1U);
    EXPECT_EQ(errorOf(manager_.addVideoTrack(blind, output, 500, 64, 64)), refused);
    EXPECT_EQ(errorOf(manager_.addVideoTrack(missing, output, 500, 64, 64)), refused);
    EXPECT_EQ(temporaryFiles(), 3U);
    EXPECT_EQ(errorOf(manager_.addVideoTrack(clip, output, 500, 0, 0)), refused);
    EXPECT_EQ(errorOf(manager_.addVideoTrack(clip, output, 0, 64, 64)), refused);
    EXPECT_EQ(errorOf(manager_.addAudioTrack(clip, output, -1)), refused);
    EXPECT_EQ(errorOf(manager_.removeVideoTrack(silent, output)), refused);
    EXPECT_EQ(errorOf(manager_.removeAudioTrack(blind, output)), refused);
    EXPECT_FALSE(std::filesystem::exists(output.path()));

    setenv("CORVANTA_FFMPEG", "/nonexistent/ffmpeg", 1);
    EXPECT_EQ(errorOf(manager_.removeAudioTrack(clip, output)), PlatformError("FAILED", 127));
}

TEST_F(TracksManagerTest, RefusesPathsThatACommandCannotCarry) {
    const std::string clip = makeClip({});
    const std::string plain = directory_.file("a b.mp4");
    write(plain, "kept");
    const auto notStarted = std::optional(PlatformError("FAILED", 127));
    const URL good = fileURL(directory_.file("good.mp4"));
    const std::vector<URL> unwritable = {
        fileURL(directory_.file("a%20b.mp4")),
        fileURL(directory_.file("\" -y x.mp4")),
        fileURL(directory_.file(std::string("a b.mp4\0x", 9))),
        *URL::parse("-hide_banner"),
        *URL::parse("file:pipe:1"),
    };
    for (const URL& url : unwritable) {
        SCOPED_TRACE(url.absoluteString());
        for (const auto& [input, output] : {std::pair(url, good), std::pair(fileURL(clip), url)}) {
            EXPECT_EQ(errorOf(manager_.addVideoTrack(input, output, 500, 64, 64)), notStarted);
            EXPECT_EQ(errorOf(manager_.addAudioTrack(input, output, 500)), notStarted);
            EXPECT_EQ(errorOf(manager_.removeVideoTrack(input, output)), notStarted);
        }
    }
    for (const URL& url : {unwritable[2], unwritable[3], unwritable[4], *URL::parse("a b.mp4"),
                           *URL::parse("http://host/tmp/a.mp4")}) {
        SCOPED_TRACE(url.absoluteString());
        EXPECT_EQ(errorOf(manager_.removeAudioTrack(url, good)), notStarted);
        EXPECT_EQ(errorOf(manager_.removeAudioTrack(fileURL(clip), url)), notStarted);
    }
    // ffmpeg would not know its input again under a second name.
    const std::string input = directory_.file("input.mp4");
    std::filesystem::copy_file(clip, input);
    std::filesystem::create_hard_link(input, directory_.file("hard.mp4"));
    std::filesystem::create_symlink(input, directory_.file("soft.mp4"));
    for (const char* name : {"input.mp4", "hard.mp4", "soft.mp4", "./input.mp4"}) {
        SCOPED_TRACE(name);
        const URL again = fileURL(directory_.file(name));
        EXPECT_EQ(errorOf(manager_.addVideoTrack(fileURL(input), again, 500, 64, 64)), notStarted);
        EXPECT_EQ(errorOf(manager_.addAudioTrack(fileURL(input), again, 500)), notStarted);
        EXPECT_EQ(errorOf(manager_.removeVideoTrack(fileURL(input), again)), notStarted);
        EXPECT_EQ(errorOf(manager_.removeAudioTrack(fileURL(input), again)), notStarted);
    }
    EXPECT_EQ(contentsOf(input), contentsOf(clip));
    EXPECT_EQ(executor_->runs, 0);
    EXPECT_EQ(contentsOf(plain), "kept");

    // As the text of a URL every name but one with a NUL can be carried.
    for (const std::string name : {"a%20b.mp4", "\" -y 'x\\.mp4", "gr\xc3\xbc\xc3\x9f \xff e.mp4"}) {
        SCOPED_TRACE(name);
        std::filesystem::copy_file(clip, directory_.file(name));
        runBlocking(
            manager_.removeAudioTrack(fileURL(directory_.file(name)), fileURL(directory_.file("o" + name))));
        EXPECT_TRUE(std::filesystem::exists(directory_.file("o" + name)));
    }
    EXPECT_EQ(contentsOf(plain), "kept");
}

} // namespace
} // namespace corvanta
