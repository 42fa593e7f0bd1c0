#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>

#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <platform/AssetReader.hpp>
#include <platform/Directories.hpp>

#include <boost/asio/error.hpp>
#include <gmock/gmock.h>

#include <algorithm>

namespace corvanta {
namespace {

namespace fs = std::filesystem;
using test::Clip;
using test::makeClip;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class RecordingExecutor : public FFMPEGCommandExecutorImplementation {
  public:
    Task<> executeFFMPEGCommand(std::string command, OnUpdateSessionId onUpdateSessionId) override {
        commands.push_back(command);
        co_await FFMPEGCommandExecutorImplementation::executeFFMPEGCommand(std::move(command),
                                                                           std::move(onUpdateSessionId));
        if (stopsAfterRun) {
            throw boost::system::system_error(boost::asio::error::operation_aborted);
        }
    }

    std::vector<std::string> commands;
    bool stopsAfterRun = false;
};

class CorvantaSdkVideoEditorTest : public testing::Test {
  protected:
    CorvantaSdkVideoEditorTest() { setenv("XDG_DATA_HOME", directory_.file("data").c_str(), 1); }

    std::string edit(CorvantaSdkVideoEditorInput input) {
        return errorOf([&] { EXPECT_EQ(runBlocking(editor_.edit(input)).editedVideoURL, input.outputURL); });
    }

    std::string thumbnail(const URL& video, double interval, std::optional<std::int64_t> height = 64) {
        return errorOf(
            [&] { image_ = runBlocking(editor_.getThumbnailForVideo(video, interval, 45, height)).path(); });
    }

    std::string errorOf(const std::function<void()>& call) {
        executor_->commands.clear();
        log_.take();
        return test::failureOf(call);
    }

    URL output(const std::string& name = "out.mp4") const { return URL::fromFilePath(directory_.file(name)); }

    TemporaryDirectory directory_;
    test::RecordedLog log_;
    std::shared_ptr<RecordingExecutor> executor_ = std::make_shared<RecordingExecutor>();
    CorvantaSdkVideoEditorImplementation editor_{std::make_shared<CorvantaCredentialsManagerImp>(),
                                                 executor_};
    std::string image_;
};

std::vector<double> pictureTimes(const URL& file) {
    return test::ffprobeNumbers(file.path(), "v", "packet=pts_time");
}

std::string calledWith(const URL& video) {
    return "info event_video_edit: Edit called with videoPath: " + video.absoluteString();
}

constexpr const char* failed = "error event_video_edit: Error editing video. ";

constexpr const char* withBFrames = "-c:v libx264 -g 30 -pix_fmt yuv420p -c:a aac";

// What stream copy makes of each source: the header tells hosts of it.
TEST_F(CorvantaSdkVideoEditorTest, KeepsTheRangeAsFarAsTheSourceCanBeCut) {
    struct Case {
        std::string name;
        Clip clip;
        double start, end;
        std::size_t packets;
        double firstPictureAt;
    };
    const URL target = output("an output.mp4");
    const Clip vp9{
        .seconds = 2, .container = "webm", .codecs = "-c:v libvpx-vp9 -deadline realtime -c:a libopus"};
    const std::vector<Case> cases = {
        {"to the middle", {.seconds = 3}, 0, 1.5, 45, 0},
        {"from a key frame", {.seconds = 3}, 1, 2, 30, 0},
        {"from between key frames", {.seconds = 3}, 0.4, 3, 60, 0.6},
        {"B-frames lose the first group", {.seconds = 3, .codecs = withBFrames}, 0, 3, 60, 1},
        {"B-frames in one group lose the picture", {.seconds = 1, .codecs = withBFrames}, 0, 1, 0, 0},
        {"vp9 in webm", vp9, 0, 2, 60, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const URL clip = URL::fromFilePath(makeClip(c.clip));
        ASSERT_EQ(edit({clip, target, c.start, c.end}), "");
        EXPECT_THAT(log_.take(), ElementsAre(calledWith(clip)));
        const auto times = pictureTimes(target);
        EXPECT_EQ(times.size(), c.packets);
        EXPECT_NEAR(times.empty() ? 0 : times.front(), c.firstPictureAt, 0.02);
        EXPECT_NEAR(AssetReader(target).duration(), c.end - c.start, 0.05);
        EXPECT_TRUE(test::probed(target.path()).hasAudio());
    }
}

TEST_F(CorvantaSdkVideoEditorTest, RecordsTheTurn) {
    for (const auto& [sourceRotation, angle, container, rotation] :
         std::vector<std::tuple<int, std::int64_t, std::string, std::int64_t>>{{0, 90, "mp4", -90},
                                                                               {0, 270, "mp4", 90},
                                                                               {0, 180, "mov", -180},
                                                                               {0, 90, "mkv", 0},
                                                                               {-90, -90, "mp4", 90},
                                                                               {-90, 0, "mov", 0},
                                                                               {-90, 90, "mp4", -90}}) {
        SCOPED_TRACE(std::to_string(sourceRotation) + " + " + std::to_string(angle) + " " + container);
        const URL clip = URL::fromFilePath(makeClip({.rotation = sourceRotation}));
        const URL written = output("turned." + container);
        ASSERT_EQ(edit({clip, written, 0, 1, angle}), "");
        EXPECT_EQ(test::probed(written.path()).rotation(), rotation);
    }
}

TEST_F(CorvantaSdkVideoEditorTest, ChecksBeforeItRuns) {
    const URL clip = URL::fromFilePath(makeClip({}));
    const double duration = AssetReader(clip).duration();
    const double beyond = std::nextafter(duration, 2 * duration);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const URL missing = output("missing.mp4");
    const URL text = output("notes.txt");
    const URL garbage = output("garbage.mp4");
    test::writeFile(text.path(), "text");
    test::writeFile(garbage.path(), "no video");
    struct Case {
        URL video;
        double start, end;
        std::string error;
    };
    for (const Case& c : std::vector<Case>{{missing, 0, 1, "notFoundVideo"},
                                           {text, 0, 1, "invalidFile"},
                                           {garbage, 0, 1, "invalidFile"},
                                           {clip, 0.5, 0.5, "invalidTrimRange"},
                                           {clip, 0.5, 0.4, "invalidTrimRange"},
                                           {clip, -0.001, 1, "invalidTrimRange"},
                                           {clip, 0, beyond, "invalidTrimRange"},
                                           {clip, nan, 1, "invalidTrimRange"},
                                           {clip, 0, nan, "invalidTrimRange"},
                                           {clip, 0, duration, ""}}) {
        SCOPED_TRACE(c.video.path() + " " + std::to_string(c.start) + " " + std::to_string(c.end));
        EXPECT_EQ(edit({c.video, output(), c.start, c.end}), c.error);
        EXPECT_EQ(executor_->commands.empty(), !c.error.empty());
        EXPECT_THAT(log_.take(), ElementsAre(calledWith(c.video)));
    }
    for (const Case& c : std::vector<Case>{{missing, 0, 1, "notFoundVideo"},
                                           {garbage, 0, 1, "invalidFile"},
                                           {clip, 0, beyond, "invalidTrimRange"},
                                           {clip, 0, nan, "invalidTrimRange"},
                                           {clip, 0, -1, "trimFailed"},
                                           {clip, 0, duration, ""}}) {
        SCOPED_TRACE(c.video.path() + " " + std::to_string(c.end));
        EXPECT_EQ(thumbnail(c.video, c.end), c.error);
        EXPECT_EQ(executor_->commands.empty(), !c.error.empty() && c.error != "trimFailed");
        EXPECT_THAT(log_.take(), IsEmpty());
    }

    // A file system without any room.
    const URL longer = URL::fromFilePath(makeClip({.seconds = 4, .codecs = withBFrames}));
    for (const auto cut : {CorvantaSdkVideoCut::copied, CorvantaSdkVideoCut::exact}) {
        executor_->commands.clear();
        CorvantaSdkVideoEditorInput input{longer, URL::fromFilePath("/proc/out.mp4"), 0.5, 4};
        input.cut = cut;
        try {
            runBlocking(editor_.edit(input));
            ADD_FAILURE();
        } catch (const CorvantaSdkVideoError& error) {
            EXPECT_EQ(error.kind(), CorvantaSdkVideoError::trimFailed);
            EXPECT_EQ(error.details(), "/proc: no space: needs 1 MB, and 0 MB are free");
        }
        EXPECT_THAT(executor_->commands, IsEmpty());
    }

    const test::RecordedLog loggedOut(false);
    EXPECT_EQ(edit({missing, output(), 0, 1}), "userNotAuthenticated");
    EXPECT_EQ(thumbnail(missing, 1), "userNotAuthenticated");
}

TEST_F(CorvantaSdkVideoEditorTest, TellsOfAFailedRunOnce) {
    const URL webm = URL::fromFilePath(
        makeClip({.container = "webm", .codecs = "-c:v libvpx -deadline realtime -c:a libvorbis"}));
    for (const auto& [video, target] :
         {std::pair(webm, output()), {URL::fromFilePath(makeClip({})), output("no folder/out.mp4")}}) {
        EXPECT_EQ(edit({video, target, 0, 0.5}), "trimFailed");
        EXPECT_THAT(log_.take(), ElementsAre(calledWith(video), StartsWith(failed)));
        EXPECT_EQ(executor_->commands.size(), 1U);
    }
}

TEST_F(CorvantaSdkVideoEditorTest, WritesTheFrameAtADistanceFromTheEnd) {
    const std::string clip = directory_.file("red, then blue.mp4");
    test::runTool("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=red:s=128x96:r=30:d=1", "-f", "lavfi",
                             "-i", "color=blue:s=128x96:r=30:d=1", "-filter_complex", "concat=n=2", clip});
    const test::Colour red{254, 0, 0};
    const test::Colour blue{0, 0, 254};
    for (const auto& [interval, colour] :
         {std::pair(2.0, red), std::pair(1.5, red), std::pair(0.75, blue), std::pair(0.1, blue)}) {
        SCOPED_TRACE(interval);
        ASSERT_EQ(thumbnail(URL::fromFilePath(clip), interval), "");
        const test::Frame frame = test::frameAt(image_, 0);
        EXPECT_PRED3(test::isNear, frame.mean(), colour, 24);
        EXPECT_EQ(std::pair(frame.width, frame.height), std::pair(45, 64));
        EXPECT_EQ(fs::path(image_).parent_path(), Directories::documents().path());
        EXPECT_EQ(fs::path(image_).extension(), ".jpg");
    }
    ASSERT_EQ(thumbnail(URL::fromFilePath(clip), 1, std::nullopt), "");
    EXPECT_EQ(test::frameAt(image_, 0).height, 34);

    // A run that is stopped when it has just written leaves nothing that nobody would know of.
    const auto written = [] {
        return std::ranges::distance(fs::directory_iterator(Directories::documents().path()));
    };
    const auto before = written();
    executor_->stopsAfterRun = true;
    EXPECT_THAT(thumbnail(URL::fromFilePath(clip), 1), StartsWith("Operation canceled"));
    EXPECT_EQ(written(), before);
}

} // namespace
} // namespace corvanta
