#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"
#include "support/ScriptedExecutor.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGeneratorImplementation.hpp>

#include <gmock/gmock.h>

namespace corvanta::test {
namespace {

using testing::IsEmpty;
using Size = std::optional<std::int64_t>;

constexpr double oneSecond = 1000;

class ThumbnailTest : public testing::Test {
  protected:
    std::string generate(const std::string& input, const std::string& output, double millis,
                         Size width = std::nullopt, Size height = std::nullopt) {
        CorvantaSdkVideoThumbnailGeneratorImplementation generator({}, executor_);
        return failureOf([&] {
            runBlocking(generator.generateThumbnail({CorvantaSdkVideoFile(URL::fromFilePath(input)),
                                                     CorvantaSdkVideoFileDescriptor::custom(output), millis,
                                                     width, height}));
        });
    }

    const RecordedLog log_;
    TemporaryDirectory directory_;
    std::shared_ptr<ScriptedExecutor> executor_ = std::make_shared<ScriptedExecutor>();
};

TEST_F(ThumbnailTest, TheFirstFailedCheckEndsIt) {
    const std::string clip = makeClip({.seconds = 2});
    const std::string missing = directory_.file("missing.mp4");
    const std::string output = directory_.file("thumbnail");
    const std::string text = directory_.file("text.mp4");
    writeFile(text, "no media");
    writeFile(output + ".jpg", "older");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case {
        bool authenticated;
        std::string input, output;
        double millis;
        Size width, height;
        std::string outcome;
    };
    for (const Case& expected : {
             Case{false, missing, "1:", -1, -1, -1, "userNotAuthenticated"},
             {true, missing, "1:", -1, -1, -1, "notFoundVideo"},
             {true, clip, "1:", -1, -1, -1, "invalidThumbnailWidth"},
             {true, clip, "1:", -1, 0, -1, "invalidThumbnailHeight"},
             {true, clip, "1:", -0.001, 0, 0, "invalidPositionInVideo"},
             {true, clip, "1:", 2000, {}, {}, "invalidPositionInVideo"},
             {true, clip, "1:", nan, {}, {}, "invalidPositionInVideo"},
             {true, clip, "1:", 0, {}, {}, "notFoundVideo"},
             {true, text, output, 0, {}, {}, "AssetReader error -1094995529"},
         }) {
        RecordedLog log(expected.authenticated);
        EXPECT_EQ(generate(expected.input, expected.output, expected.millis, expected.width, expected.height),
                  expected.outcome);
        EXPECT_EQ(log.take().front(),
                  "info event_video_create_thumbnail: Create thumbnail called with videoPath: " +
                      URL::fromFilePath(expected.input).absoluteString());
    }
    EXPECT_THAT(executor_->scripts, IsEmpty());
    EXPECT_EQ(readFile(output + ".jpg"), "older");
}

TEST_F(ThumbnailTest, OlderThumbnailsAndTheCommand) {
    const std::string clip = makeClip({.seconds = 2});
    const std::string output = directory_.file("thumb nail");
    const std::string command =
        "-i file://" + clip + " -ss 1.9999 -vframes 1 -vf scale=0:-1 \"" + output + ".jpg\"";
    writeFile(output + ".jpg", "older");
    executor_->onRun = [&](const std::string&) {
        EXPECT_FALSE(std::filesystem::exists(output + ".jpg"));
        writeFile(output + ".jpg", "newer");
    };
    EXPECT_EQ(generate(clip, output, 1999.9, 0), "");
    EXPECT_THAT(std::exchange(executor_->scripts, {}), testing::ElementsAre(command));
    EXPECT_EQ(readFile(output + ".jpg"), "newer");

    // A run that fails, and one that says success and leaves no file.
    for (const bool fails : {true, false}) {
        RecordedLog log;
        executor_->onRun = [&](const std::string&) {
            if (fails) {
                throw PlatformError("COMPLETED", 1);
            }
        };
        EXPECT_EQ(generate(clip, output, 0), "thumbnailGenerationFailed");
        const std::string reason = fails ? "COMPLETED error 1" : "Thumbnail error 1";
        EXPECT_THAT(log.take(), testing::Contains(
                                    "error event_video_create_thumbnail: Error creating thumbnail: file://" +
                                    clip + ". The operation couldn’t be completed. (" + reason + ".)"));
    }

    executor_->scripts.clear();
    std::filesystem::create_directories(directory_.path() / "full.jpg" / "below");
    EXPECT_EQ(generate(clip, directory_.file("full"), 0), "unableToDeleteExistingThumbnail");
    EXPECT_THAT(executor_->scripts, IsEmpty());
    EXPECT_TRUE(std::filesystem::exists(directory_.path() / "full.jpg" / "below"));
}

TEST(RealThumbnailTest, FramesOfRealClips) {
    const RecordedLog log;
    FFmpegKitConfig::setLogLevel("quiet");
    const TemporaryDirectory directory;
    const auto make = [&](const Clip& clip, double millis, Size width, Size height) {
        const CorvantaSdkVideoFile input(URL::fromFilePath(makeClip(clip)));
        const auto output = CorvantaSdkVideoFileDescriptor::custom(directory.file("frame"));
        const auto result =
            runBlocking(CorvantaSdkVideo->generateThumbnail(input, output, millis, width, height));
        EXPECT_EQ(result.generatedThumbnailURL.path(), directory.file("frame.jpg"));
        return frameAt(directory.file("frame.jpg"), 0);
    };
    const Clip red{.seconds = 2, .pictures = {{.source = "color=c=red"}}};
    Clip turned = red;
    turned.rotation = -90;
    for (const auto& [clip, millis, width, height, shown] :
         std::vector<std::tuple<Clip, double, Size, Size, std::pair<int, int>>>{
             {red, 0, {}, {}, {160, 120}},
             {red, oneSecond, 80, {}, {80, 60}},
             {red, 1900, {}, 240, {320, 240}},
             {red, oneSecond, 33, 77, {33, 77}},
             {turned, oneSecond, {}, {}, {120, 160}}}) {
        const Frame frame = make(clip, millis, width, height);
        EXPECT_EQ(std::pair(frame.width, frame.height), shown);
        EXPECT_TRUE(isNear(frame.mean(), {254, 0, 0})) << frame.mean();
    }
    // Past the last frame of a video track that is shorter than the file.
    EXPECT_EQ(failureOf([&] { make({.seconds = 2, .pictures = {{.seconds = 1}}}, 1800, {}, {}); }),
              "thumbnailGenerationFailed");
    const ScopedVariable noProgram("CORVANTA_FFMPEG", "/no/such/ffmpeg");
    EXPECT_EQ(failureOf([&] { make({}, 0, {}, {}); }), "thumbnailGenerationFailed");
}

} // namespace
} // namespace corvanta::test
