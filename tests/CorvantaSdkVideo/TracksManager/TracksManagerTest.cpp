#include <CorvantaSdkVideo/TracksManager/TracksManager.hpp>

#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/UserFolders.hpp"

#include <platform/Directories.hpp>

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using namespace test;
using testing::IsEmpty;
using testing::SizeIs;

URL fileURL(const std::string& path) { return URL::fromFilePath(path); }

TEST(FFMPEGVideoTracksCommandGenerator, WritesTheScripts) {
    const FFMPEGVideoTracksCommandGenerator generator;
    const URL input = fileURL("/v/my clip.mp4");
    const URL output = fileURL("/v/new clip.mp4");
    for (const auto& [milliseconds, seconds] : std::map<std::int64_t, std::string>{
             {0, "0.0"}, {1, "0.001"}, {1500, "1.5"}, {16777217, "16777.217"}}) {
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

class TracksManagerTest : public testing::Test {
  protected:
    std::vector<std::string> temporaryFiles() const { return namesIn({Directories::documents().path()}); }
    std::string errorOf(Task<> task) const {
        return failureOf([&] { runBlocking(std::move(task)); });
    }

    std::string file(const std::string& name) const { return folders_.file(name); }

    const UserFolders folders_;
    TracksManager manager_{std::make_shared<FFMPEGCommandExecutorImplementation>()};
};

TEST_F(TracksManagerTest, ChangesTheTracksOfRealFiles) {
    const URL clip = fileURL(makeClip({.seconds = 2}));
    const URL rich = fileURL(makeClip({.pictures = {{}, {.width = 64, .height = 64}}, .sounds = {{}, {}}}));
    const URL output = fileURL(file("an output.mp4"));
    struct Case {
        std::string name;
        std::function<Task<>()> run;
        std::vector<std::int64_t> videoDurations, audioDurations;
    };
    const std::vector<Case> cases = {
        {"add audio", [&] { return manager_.addAudioTrack(clip, output, 3000); }, {2000}, {2000, 3000}},
        {"add video to many",
         [&] { return manager_.addVideoTrack(rich, output, 3000, 128, 128); },
         {1000, 1000, 3000},
         {1000, 1000}},
        {"remove video", [&] { return manager_.removeVideoTrack(rich, output); }, {}, {1000}},
        {"remove audio", [&] { return manager_.removeAudioTrack(rich, output); }, {1000}, {}},
        {"add video",
         [&] { return manager_.addVideoTrack(clip, output, 1500, 320, 242); },
         {2000, 1500},
         {2000}},
    };
    for (const Case& surgery : cases) {
        SCOPED_TRACE(surgery.name);
        writeFile(output.path(), "an older file");
        runBlocking(surgery.run());
        const CorvantaSdkVideoInformation info = probed(output.path());
        const auto expectNear = [](const auto& tracks, const std::vector<std::int64_t>& durations) {
            ASSERT_EQ(tracks.size(), durations.size());
            for (std::size_t track = 0; track < tracks.size(); ++track) {
                EXPECT_LE(std::abs(tracks[track].durationMillis - durations[track]), 34);
            }
        };
        expectNear(info.videos, surgery.videoDurations);
        expectNear(info.audios, surgery.audioDurations);
        EXPECT_THAT(temporaryFiles(), IsEmpty());
    }
    const CorvantaSdkVideoInformation info = probed(output.path());
    EXPECT_EQ(info.videos[1].width, 320);
    EXPECT_EQ(info.videos[1].height, 242);
    EXPECT_EQ(info.videos[1].codec, "mpeg4");
    EXPECT_EQ(info.videos[0], probed(clip.path()).videos[0]);
    EXPECT_TRUE(isNear(meanColour(output.path(), 1.4, {}, 1), {254, 0, 0}));
    EXPECT_TRUE(isNear(meanColour(output.path(), 1, {}, 0), meanColour(clip.path(), 1), 0.01));
}

TEST_F(TracksManagerTest, PassesOnWhatFFmpegRefusesAndLeavesTheTemporaryFile) {
    const URL clip = fileURL(makeClip({}));
    const URL silent = fileURL(makeClip({.sounds = {}}));
    const URL blind = fileURL(makeClip({.pictures = {}}));
    const URL missing = fileURL(file("missing.mp4"));
    const URL output = fileURL(file("out.mp4"));
    const std::string refused = "COMPLETED error 1";
    EXPECT_EQ(errorOf(manager_.addAudioTrack(silent, output, 500)), refused);
    EXPECT_THAT(temporaryFiles(), SizeIs(1));
    EXPECT_EQ(errorOf(manager_.addVideoTrack(blind, output, 500, 64, 64)), refused);
    EXPECT_EQ(errorOf(manager_.addVideoTrack(missing, output, 500, 64, 64)), refused);
    EXPECT_THAT(temporaryFiles(), SizeIs(3));
    EXPECT_EQ(errorOf(manager_.addVideoTrack(clip, output, 500, 0, 0)), refused);
    EXPECT_EQ(errorOf(manager_.addVideoTrack(clip, output, 0, 64, 64)), refused);
    EXPECT_EQ(errorOf(manager_.addAudioTrack(clip, output, -1)), refused);
    EXPECT_EQ(errorOf(manager_.removeVideoTrack(silent, output)), refused);
    EXPECT_EQ(errorOf(manager_.removeAudioTrack(blind, output)), refused);
    EXPECT_FALSE(std::filesystem::exists(output.path()));

    const ScopedVariable noProgram("CORVANTA_FFMPEG", "/nonexistent/ffmpeg");
    EXPECT_EQ(errorOf(manager_.removeAudioTrack(clip, output)), "FAILED error 127");
}

} // namespace
} // namespace corvanta
