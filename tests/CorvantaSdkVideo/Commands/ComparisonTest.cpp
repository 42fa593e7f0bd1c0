#include "EngineBench.hpp"

#include <CorvantaSdkVideo/Commands/Concat/VideosGlobalInformation.hpp>

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using ::testing::Contains;
using ::testing::UnorderedElementsAre;
using Information = CorvantaSdkVideoInformation;

/// The same tracks in another shape on screen.
Information shapedAs(const Information& from, VideoSize size, Orientation orientation) {
    return {from.url,    from.size,   from.durationMillis, from.format,
            from.videos, from.audios, orientation,         size};
}

class ComparisonTest : public testing::Test, protected test::EngineBench {
  protected:
    ComparisonTest() {
        folders.make("c.mp4");
        executor->onProbe = [this](const URL& url) {
            Information information = test::plainInformation(url);
            if (url == videos_[changed_]) {
                change_(information);
            }
            return information;
        };
    }

    std::string canProcess(std::vector<URL> videos) const {
        bool answer = false;
        const std::string failure = test::failureOf(
            [&] { answer = runBlocking(comparison.canProcessConcatWith(std::move(videos))); });
        return !failure.empty() ? failure : answer ? "yes" : "no";
    }

    std::string difference(std::vector<URL> videos) {
        details_.clear();
        return test::failureOf([&] {
            try {
                runBlocking(comparison.validateVideosForConcat(std::move(videos)));
            } catch (const CorvantaSdkVideoError& error) {
                details_ = error.details();
                throw;
            }
        });
    }

    const std::vector<URL> videos_ = {input("a.mp4"), input("b.mp4"), input("c.mp4")};
    std::size_t changed_ = 2;
    std::function<void(Information&)> change_ = [](Information&) {};
    std::string details_;
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
        {"nothing", [](Information&) {}, ""},
        {"size, length", [](Information& i) { i.size = i.durationMillis = 9; }, ""},
        {"shown size",
         [](Information& i) {
             i = shapedAs(i, {4, 8}, Orientation::portrait);
         },
         ""},
        {"what can differ",
         [](Information& i) {
             i.videos[0].index = i.videos[0].bitRate = i.videos[0].durationMillis = 7;
             i.audios[0].index = i.audios[0].bitRate = i.audios[0].durationMillis = 7;
         },
         ""},
        {"covers behind the tracks",
         [](Information& i) {
             i.covers = {2, 3};
         },
         ""},
        {"a cover among the tracks", [](Information& i) { i.covers = {0}; }, videoTracks},
        {"format", [](Information& i) { i.format = "matroska,webm"; }, formats},
        {"width", [](Information& i) { i.videos[0].width = 1918; }, videoTracks},
        {"height", [](Information& i) { i.videos[0].height = 1078; }, videoTracks},
        {"displayed width of video track 0", [](Information& i) { i.videos[0].rotatedWidth = 1; },
         videoTracks},
        {"displayed height of video track 0", [](Information& i) { i.videos[0].rotatedHeight = 1; },
         videoTracks},
        {"codec", [](Information& i) { i.videos[0].codec = "hevc"; }, videoTracks},
        {"codec tag of video", [](Information& i) { i.videos[0].codecTag = "avc3"; }, videoTracks},
        {"pixel format", [](Information& i) { i.videos[0].pixelFormat = "yuv422p"; }, videoTracks},
        {"frame rate", [](Information& i) { i.videos[0].frameRate = "60/2"; }, videoTracks},
        {"rotation", [](Information& i) { i.videos[0].rotation = 180; }, videoTracks},
        {"number of video tracks", [](Information& i) { i.videos.clear(); }, videoTracks},
        {"number of video tracks", [](Information& i) { i.videos.push_back(i.videos[0]); }, videoTracks},
        {"codec of audio track 0", [](Information& i) { i.audios[0].codec = "mp3"; }, audioTracks},
        {"codec tag of audio", [](Information& i) { i.audios[0].codecTag = "."; }, audioTracks},
        {"sample format", [](Information& i) { i.audios[0].sampleFormat = "s16"; }, audioTracks},
        {"sample rate", [](Information& i) { i.audios[0].sampleRate = 44'100; }, audioTracks},
        {"channel count", [](Information& i) { i.audios[0].channels = 1; }, audioTracks},
        {"channel layout", [](Information& i) { i.audios[0].channelLayout = "mono"; }, audioTracks},
        {"number of audio tracks", [](Information& i) { i.audios.clear(); }, audioTracks},
        {"number of audio tracks", [](Information& i) { i.audios.push_back(i.audios[0]); }, audioTracks},
        {"format", [](Information& i) { i = {i.url, 0, 0, "avi", {}, {}, i.orientation, i.videoSize}; },
         formats},
        {"number of video tracks", [](Information& i) { i.videos.clear(), i.audios.clear(); }, videoTracks},
    };
    for (const Case& change : cases) {
        SCOPED_TRACE(change.name);
        change_ = change.change;
        for (changed_ = 0; changed_ < videos_.size(); ++changed_) {
            EXPECT_EQ(difference(videos_), change.difference);
            const std::string name = change.difference.empty() ? "" : change.name;
            EXPECT_THAT(details_, testing::HasSubstr(name));
        }
    }
    changed_ = 0;
    EXPECT_DEATH(difference({}), "at least one video");
}

TEST_F(ComparisonTest, AnswersWhetherFilesCanBeJoined) {
    const URL missing = input("missing.mp4");
    EXPECT_EQ(canProcess({videos_[0], videos_[1]}), "yes");
    EXPECT_EQ(canProcess({}), "invalidInputFiles(notEnoughVideos)");
    EXPECT_EQ(canProcess({videos_[0], missing}), "invalidInputFiles(inputContainsNonExistingFiles)");
    EXPECT_THAT(takeErrors(), testing::IsEmpty());
    change_ = [](Information& i) { i.format = "avi"; };
    EXPECT_EQ(canProcess(videos_), "no");
    const std::string failed =
        "error event_video_compare: Error comparing videos. The operation couldn’t be completed. ";
    EXPECT_THAT(log.take(), Contains(failed + "(CorvantaSdkVideoError error 9.)"));
    change_ = [](Information&) { throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed); };
    EXPECT_EQ(canProcess(videos_), "no");
    EXPECT_THAT(log.take(), Contains(failed + "(CorvantaSdkVideoError error 23.)"));

    const test::RecordedLog loggedOut(false);
    EXPECT_EQ(canProcess({}), "userNotAuthenticated");
}

TEST(VideosGlobalInformation, FoldsItsVideos) {
    const Information plain = test::plainInformation(URL::fromFilePath("/a.mp4"));
    Information silent = shapedAs(plain, {1080, 1920}, Orientation::portrait);
    silent.audios.clear();
    silent.videos[0].codec = "hevc";
    silent.videos[0].frameRate = "30000/1001";
    Information blind = shapedAs(plain, {0, 0}, Orientation::portrait);
    blind.videos.clear();
    blind.audios[0].codec = "mp3";
    blind.audios[0].sampleRate = 44'100;

    const auto sound = [](const std::vector<Information>& videos) {
        const VideosGlobalInformation all(videos);
        return std::pair(all.allVideosHaveAudio(), all.noVideoHasAudio());
    };
    EXPECT_EQ(sound({}), std::pair(true, true));
    EXPECT_EQ(sound({plain, plain}), std::pair(true, false));
    EXPECT_EQ(sound({silent, silent}), std::pair(false, true));
    EXPECT_EQ(sound({plain, silent}), std::pair(false, false));
    EXPECT_EQ(sound({silent, plain}), std::pair(false, false));

    const VideosGlobalInformation all({plain, silent, blind, plain});
    EXPECT_EQ(all.targetSize(), (VideoSize{1920, 1920}));
    EXPECT_THAT(all.portraitSizes(), UnorderedElementsAre(VideoSize{1080, 1920}, VideoSize{0, 0}));
    EXPECT_THAT(all.landscapeSizes(), UnorderedElementsAre(VideoSize{1920, 1080}));
    EXPECT_THAT(all.videoCodecs(), UnorderedElementsAre("h264", "hevc", ""));
    EXPECT_THAT(all.audioCodecs(), UnorderedElementsAre("aac", "", "mp3"));
    EXPECT_THAT(all.audioSampleRates(), UnorderedElementsAre(48'000.0, 0.0, 44'100.0));
    EXPECT_THAT(all.framesPerRate(), UnorderedElementsAre(CorvantaSdkVideoFrameRate::thirtyFps,
                                                          CorvantaSdkVideoFrameRate::unknown));
}

} // namespace
} // namespace corvanta
