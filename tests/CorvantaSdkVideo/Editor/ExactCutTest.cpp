#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>

#include "support/DecodedMedia.hpp"
#include "support/Failure.hpp"
#include "support/RecordedLog.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace corvanta {
namespace {

using test::Clip;
using test::TimedFrame;
using Ranges = std::vector<CorvantaSdkVideoTimeRange>;
using Way = CorvantaSdkVideoCutWay;

double psnr(const test::Frame& left, const test::Frame& right) {
    double squares = 0;
    for (std::size_t index = 0; index < left.rgb.size(); ++index) {
        const double difference =
            static_cast<unsigned char>(left.rgb[index]) - static_cast<unsigned char>(right.rgb.at(index));
        squares += difference * difference;
    }
    return squares == 0 ? 99 : 10 * std::log10(255 * 255 * static_cast<double>(left.rgb.size()) / squares);
}

// What a cut must show: the source's pictures of each range, where that range comes to lie; the first of each
// at its very beginning.
std::vector<TimedFrame> expectedFrames(const std::string& source, const Ranges& ranges) {
    const double origin = test::ffprobeNumbers(source, "v", "format=start_time").at(0);
    const std::vector<TimedFrame> frames = test::decodedVideo(source);
    std::vector<TimedFrame> expected;
    double placed = 0;
    for (const auto& [start, end] : ranges) {
        bool isFirst = true;
        for (const TimedFrame& frame : frames) {
            const double time = frame.time - origin;
            if (time >= start - 1e-4 && time < end - 1e-4) {
                expected.push_back(
                    {placed + (std::exchange(isFirst, false) ? 0 : time - start), frame.frame});
            }
        }
        placed += end - start;
    }
    return expected;
}

class ExactCutTest : public testing::Test {
  protected:
    ExactCutTest() { setenv("XDG_DATA_HOME", directory_.file("data").c_str(), 1); }

    CorvantaSdkVideoEditorInput input(const std::string& source, Ranges ranges) const {
        return {.videoURL = URL::fromFilePath(source),
                .outputURL = URL::fromFilePath(directory_.file("out.mp4")),
                .startPosition = ranges.front().start,
                .endPosition = ranges.front().end,
                .cut = CorvantaSdkVideoCut::exact,
                .ranges = std::move(ranges)};
    }

    test::TemporaryDirectory directory_;
    test::RecordedLog log_;
    CorvantaSdkVideoEditorImplementation editor_;
};

TEST_F(ExactCutTest, KeepsEveryPictureOfItsRangesAndNoOther) {
    struct Case {
        std::string codecs;
        std::string container;
        std::string rate;
        Ranges ranges;
        Way way;
    };
    const std::string x264 = "-c:v libx264 -preset ultrafast -g 25 -pix_fmt yuv420p -c:a aac";
    const std::string x265 = "-c:v libx265 -preset ultrafast -pix_fmt yuv420p -c:a aac -x265-params "
                             "log-level=error:keyint=25:min-keyint=25:bframes=3:open-gop=";
    for (const Case& c : {
             Case{x264 + " -bf 3 -x264-params b-adapt=0", "mp4", "25", {{0.3, 2.5}}, Way::joined},
             {x264 + " -bf 3 -x264-params b-adapt=0", "mkv", "25", {{0.96, 1.33}, {1.7, 2.9}}, Way::joined},
             {x264 + " -bf 3 -x264-params b-adapt=0", "ts", "30000/1001", {{0.3, 2.17}}, Way::joined},
             {x264 + " -bf 3 -x264-params b-adapt=0:open-gop=1", "mp4", "25", {{1.3, 2.5}}, Way::encoded},
             {x264 + " -bf 0", "mov", "25", {{1, 2}}, Way::copied},
             {x265 + "0", "mp4", "25", {{0.5, 2.45}}, Way::joined},
             {x265 + "1", "mkv", "25", {{1.0, 1.5}, {0.3, 2.9}}, Way::joined},
             {"-c:v mpeg4 -g 25 -q:v 2 -c:a aac", "mp4", "25", {{0.3, 1.3}}, Way::encoded},
         }) {
        const std::string source = test::makeClip(
            {.seconds = 3, .pictures = {{.rate = c.rate}}, .container = c.container, .codecs = c.codecs});
        SCOPED_TRACE(c.container + " " + c.codecs);
        const auto result = runBlocking(editor_.edit(input(source, c.ranges)));
        EXPECT_EQ(result.cutWay, c.way);
        const auto expected = expectedFrames(source, c.ranges);
        const auto frames = test::decodedVideo(result.editedVideoURL->path());
        ASSERT_EQ(frames.size(), expected.size());
        for (std::size_t index = 0; index < frames.size(); ++index) {
            EXPECT_NEAR(frames[index].time - frames[0].time, expected[index].time, 0.002) << index;
            EXPECT_GT(psnr(frames[index].frame, expected[index].frame), 40) << index;
        }
        double length = 0;
        for (const auto& [start, end] : c.ranges) {
            length += end - start;
        }
        EXPECT_NEAR(test::decodedSound(result.editedVideoURL->path()).end(), length, 0.05);
    }
    EXPECT_TRUE(std::filesystem::is_empty(directory_.file("data/corvanta-sdk-video/documents")));
}

TEST_F(ExactCutTest, KeepsTagsAndCoversWhateverFilesAreCalled) {
    const std::string odd = directory_.file("a\"b%20 'c: {trimStart} %d");
    setenv("XDG_DATA_HOME", odd.c_str(), 1);
    std::filesystem::create_directory(odd);
    const std::string clip = test::makeClip({.seconds = 2, .sounds = {{.language = "deu"}}, .cover = true});
    for (const auto& [extension, maps, kept] :
         {std::tuple{".mp4", "-map 0", "attached_pic=1"},
          {".mov", "-map 0:a -map 0:v:0 -movflags use_metadata_tags -metadata com.example.maker=X",
           "maker=\"X"}}) {
        const std::string source = odd + "/in\"" + extension;
        std::vector<std::string> words{"-v", "error", "-i", clip, "-c", "copy", "file:" + source};
        const auto tags = test::wordsOf(std::string(maps) +
                                        " -metadata title=Sea -metadata date=2024-05-06 "
                                        "-metadata location=+52.5200+013.4050/ -metadata:s:v:0 language=fra");
        words.insert(words.end() - 1, tags.begin(), tags.end());
        test::runTool("ffmpeg", words);
        CorvantaSdkVideoEditorInput asked = input(source, {{0.2, 0.7}, {1, 1.5}});
        asked.outputURL = URL::fromFilePath(odd + "/out\".mp4");
        EXPECT_EQ(runBlocking(editor_.edit(asked)).rangeWays, (std::vector{Way::encoded, Way::copied}));
        const std::string told = test::runTool("ffprobe", {"-v", "error", "-show_entries",
                                                           "format_tags:stream_tags:stream_disposition",
                                                           "-of", "flat", "file:" + asked.outputURL.path()});
        for (const char* tag :
             {"title=\"Sea", "date=\"2024-05-06", "location=\"+52.5200", "language=\"fra", kept}) {
            EXPECT_NE(told.find(tag), told.npos) << tag << '\n' << told;
        }
    }
}

} // namespace
} // namespace corvanta
