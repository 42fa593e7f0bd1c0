#include <CorvantaSdkVideo/Commands/Concat/ConcatInputValidator.hpp>
#include <CorvantaSdkVideo/Commands/Concat/VideosGlobalInformation.hpp>

#include "support/ScriptedExecutor.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvanta {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Information = CorvantaSdkVideoInformation;

Information turned(const Information& from, int width, int height, Orientation orientation) {
    return {from.url,
            from.size,
            from.durationMillis,
            from.format,
            from.videos,
            from.audios,
            orientation,
            {static_cast<double>(width), static_cast<double>(height)}};
}

class ComparisonTest : public testing::Test {
  protected:
    ComparisonTest() {
        for (const char* name : {"a.mp4", "b.mp4", "c.mp4"}) {
            test::writeFile(directory_.file(name), "");
            videos_.push_back(URL::fromFilePath(directory_.file(name)));
        }
        executor_->onProbe = [this](const URL& url) {
            Information information = test::plainInformation(url);
            if (url == videos_[changed_]) {
                change_(information);
            }
            return information;
        };
    }

    // The answer, or the error's name.
    std::string canProcess(std::vector<URL> videos) const {
        try {
            return runBlocking(validator_.canProcessConcatWith(std::move(videos))) ? "yes" : "no";
        } catch (const std::exception& error) {
            return error.what();
        }
    }

    std::string difference(std::vector<URL> videos) const {
        try {
            runBlocking(validator_.validateVideosForConcat(std::move(videos)));
            return "none";
        } catch (const std::exception& error) {
            return error.what();
        }
    }

    test::RecordedLog log_;
    test::TemporaryDirectory directory_;
    std::vector<URL> videos_;
    std::size_t changed_ = 2;
    std::function<void(Information&)> change_ = [](Information&) {};
    const std::shared_ptr<test::ScriptedExecutor> executor_ = std::make_shared<test::ScriptedExecutor>();
    const std::shared_ptr<CorvantaCredentialsManager> credentials_ =
        std::make_shared<CorvantaCredentialsManagerImp>();
    const ConcatInputValidator validator_{executor_, credentials_,
                                          VideosInformationGenerator(credentials_, executor_)};
};

TEST_F(ComparisonTest, NamesTheFirstDifferenceWhereverItIs) {
    const std::string formats = "invalidInputFiles(differentFormats)";
    const std::string videoTracks = "invalidInputFiles(differentVideoTracks)";
    const std::string audioTracks = "invalidInputFiles(differentAudioTracks)";
    struct Case {
        std::string name;
        std::function<void(Information&)> change;
        std::string difference;
    };
    const std::vector<Case> cases = {
        {"nothing", [](Information&) {}, "none"},
        {"size, length", [](Information& i) { i.size = i.durationMillis = 9; }, "none"},
        {"shown size", [](Information& i) { i = turned(i, 4, 8, Orientation::portrait); }, "none"},
        {"video index", [](Information& i) { i.videos[0].index = 1; }, "none"},
        {"video bit rate", [](Information& i) { i.videos[0].bitRate = 1; }, "none"},
        {"video length", [](Information& i) { i.videos[0].durationMillis = 1; }, "none"},
        {"audio index", [](Information& i) { i.audios[0].index = 0; }, "none"},
        {"audio bit rate", [](Information& i) { i.audios[0].bitRate = 1; }, "none"},
        {"audio length", [](Information& i) { i.audios[0].durationMillis = 1; }, "none"},
        {"format", [](Information& i) { i.format = "matroska,webm"; }, formats},
        {"width", [](Information& i) { i.videos[0].width = 1918; }, videoTracks},
        {"height", [](Information& i) { i.videos[0].height = 1078; }, videoTracks},
        {"turned width", [](Information& i) { i.videos[0].rotatedWidth = 1; }, videoTracks},
        {"turned height", [](Information& i) { i.videos[0].rotatedHeight = 1; }, videoTracks},
        {"codec", [](Information& i) { i.videos[0].codec = "hevc"; }, videoTracks},
        {"tag", [](Information& i) { i.videos[0].codecTag = "avc3"; }, videoTracks},
        {"pixel format", [](Information& i) { i.videos[0].pixelFormat = "yuv422p"; }, videoTracks},
        {"rate", [](Information& i) { i.videos[0].frameRate = "60/2"; }, videoTracks},
        {"rotation", [](Information& i) { i.videos[0].rotation = 180; }, videoTracks},
        {"no video", [](Information& i) { i.videos.clear(); }, videoTracks},
        {"two videos", [](Information& i) { i.videos.push_back(i.videos[0]); }, videoTracks},
        {"audio codec", [](Information& i) { i.audios[0].codec = "mp3"; }, audioTracks},
        {"audio tag", [](Information& i) { i.audios[0].codecTag = "."; }, audioTracks},
        {"sample format", [](Information& i) { i.audios[0].sampleFormat = "s16"; }, audioTracks},
        {"sample rate", [](Information& i) { i.audios[0].sampleRate = 44'100; }, audioTracks},
        {"channels", [](Information& i) { i.audios[0].channels = 1; }, audioTracks},
        {"layout", [](Information& i) { i.audios[0].channelLayout = "mono"; }, audioTracks},
        {"no audio", [](Information& i) { i.audios.clear(); }, audioTracks},
        {"two audios", [](Information& i) { i.audios.push_back(i.audios[0]); }, audioTracks},
        {"format, video, audio",
         [](Information& i) { i = {i.url, 0, 0, "avi", {}, {}, i.orientation, i.videoSize}; }, formats},
        {"video, audio", [](Information& i) { i.videos.clear(), i.audios.clear(); }, videoTracks},
    };
    for (const Case& change : cases) {
        SCOPED_TRACE(change.name);
        change_ = change.change;
        for (changed_ = 0; changed_ < videos_.size(); ++changed_) {
            EXPECT_EQ(difference(videos_), change.difference);
        }
    }
    changed_ = 0;
    EXPECT_EQ(difference({videos_[0]}), "none");
    EXPECT_EQ(difference({videos_[0], videos_[0]}), "none");
    EXPECT_DEATH(difference({}), "at least one video");
}

TEST_F(ComparisonTest, AnswersWhetherFilesCanBeJoined) {
    const URL missing = URL::fromFilePath(directory_.file("missing.mp4"));
    EXPECT_EQ(canProcess({videos_[0], videos_[1]}), "yes");
    EXPECT_EQ(canProcess({}), "invalidInputFiles(notEnoughVideos)");
    EXPECT_EQ(canProcess({missing}), "invalidInputFiles(notEnoughVideos)");
    EXPECT_EQ(canProcess({videos_[0], missing}), "invalidInputFiles(inputContainsNonExistingFiles)");
    for (const std::string& line : log_.take()) {
        EXPECT_THAT(line, HasSubstr("info event_video_get_info: Get info called"));
    }
    change_ = [](Information& i) { i.format = "avi"; };
    EXPECT_EQ(canProcess(videos_), "no");
    const std::string failed =
        "error event_video_compare: Error comparing videos. The operation couldn’t be completed. ";
    EXPECT_THAT(log_.take(), Contains(failed + "(CorvantaSdkVideoError error 9.)"));
    change_ = [](Information&) { throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed); };
    EXPECT_EQ(canProcess(videos_), "no");
    EXPECT_THAT(log_.take(), Contains(failed + "(CorvantaSdkVideoError error 23.)"));

    const test::RecordedLog loggedOut(false);
    EXPECT_EQ(canProcess({}), "userNotAuthenticated");
}

TEST(VideosGlobalInformation, FoldsItsVideos) {
    const VideosGlobalInformation nothing({});
    EXPECT_TRUE(nothing.allVideosHaveAudio());
    EXPECT_TRUE(nothing.noVideoHasAudio());
    EXPECT_EQ(nothing.targetSize(), (VideoSize{0, 0}));
    EXPECT_THAT(nothing.portraitSizes(), IsEmpty());

    const Information plain = test::plainInformation(URL::fromFilePath("/a.mp4"));
    Information silent = turned(plain, 1080, 1920, Orientation::portrait);
    silent.audios.clear();
    silent.videos[0].codec = "hevc";
    silent.videos[0].frameRate = "30000/1001";
    Information blind = turned(plain, 0, 0, Orientation::portrait);
    blind.videos.clear();
    blind.audios[0].codec = "mp3";
    blind.audios[0].sampleRate = 44'100;

    const VideosGlobalInformation like({plain, plain});
    EXPECT_TRUE(like.allVideosHaveAudio());
    EXPECT_FALSE(like.noVideoHasAudio());
    EXPECT_THAT(like.landscapeSizes(), ElementsAre(VideoSize{1920, 1080}));
    EXPECT_THAT(like.framesPerRate(), ElementsAre(CorvantaSdkVideoFrameRate::thirtyFps));

    const VideosGlobalInformation silence({silent, silent});
    EXPECT_FALSE(silence.allVideosHaveAudio());
    EXPECT_TRUE(silence.noVideoHasAudio());

    for (const auto& list : {std::vector{plain, silent, blind}, std::vector{blind, silent, plain}}) {
        const VideosGlobalInformation all(list);
        EXPECT_FALSE(all.allVideosHaveAudio());
        EXPECT_FALSE(all.noVideoHasAudio());
        EXPECT_EQ(all.targetSize(), (VideoSize{1920, 1920}));
        EXPECT_THAT(all.portraitSizes(), UnorderedElementsAre(VideoSize{1080, 1920}, VideoSize{0, 0}));
        EXPECT_THAT(all.landscapeSizes(), ElementsAre(VideoSize{1920, 1080}));
        EXPECT_THAT(all.videoCodecs(), UnorderedElementsAre("h264", "hevc", ""));
        EXPECT_THAT(all.audioCodecs(), UnorderedElementsAre("aac", "", "mp3"));
        EXPECT_THAT(all.audioSampleRates(), UnorderedElementsAre(48'000.0, 0.0, 44'100.0));
        EXPECT_THAT(all.framesPerRate(), UnorderedElementsAre(CorvantaSdkVideoFrameRate::thirtyFps,
                                                              CorvantaSdkVideoFrameRate::unknown));
    }
}

} // namespace
} // namespace corvanta
