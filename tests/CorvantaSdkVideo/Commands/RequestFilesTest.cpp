#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>

namespace corvanta {
namespace {

namespace asio = boost::asio;
namespace fs = std::filesystem;
using namespace test;
using Status = CorvantaSdkVideoRequest::Status;
using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;

std::string failureOf(const RequestPointer& request) {
    return test::failureOf([&] { runBlocking(request->process()); });
}

RequestPointer fetch(const UUID& id) {
    RequestPointer fetched;
    const auto subscription = CorvantaSdkVideo->streamRequest(id).subscribe(
        [&fetched](const RequestPointer& request) { fetched = request; });
    return fetched;
}

std::int64_t packets(const std::string& path) {
    return std::ssize(ffprobeNumbers(path, "v:0", "packet=pts_time"));
}

/// The module with a store and directories of its own, which live as long as the process.
class RequestFilesTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        static const TemporaryDirectory home;
        setenv("XDG_DATA_HOME", home.file("data").c_str(), 1);
        setenv("XDG_CACHE_HOME", home.file("cache").c_str(), 1);
        documents_ = home.path() / "data/corvanta-sdk-video/documents";
        FFmpegKitConfig::setLogLevel("error");
    }

    std::vector<CorvantaSdkVideoFile> files(const std::vector<std::string>& paths) const {
        std::vector<CorvantaSdkVideoFile> list;
        for (const std::string& path : paths) {
            list.emplace_back(URL::fromFilePath(path));
        }
        return list;
    }

    CorvantaSdkVideoFileDescriptor place(const std::string& name) const {
        return CorvantaSdkVideoFileDescriptor::custom(parseablePath(directory_.file(name)));
    }

    RequestPointer concat(const std::vector<std::string>& paths, const std::string& name = "out") const {
        return CorvantaSdkVideo->ConcatBuilder(files(paths), place(name)).build();
    }

    static inline fs::path documents_;
    const TemporaryDirectory directory_;
    const RecordedLog log_;
};

// Mp4 files carry a cover that is larger than their picture.
Clip coloured(const std::string& colour, double seconds, const std::string& container) {
    return {.seconds = seconds,
            .pictures = {{.source = "color=c=" + colour}},
            .container = container,
            .cover = container == "mp4"};
}

TEST_F(RequestFilesTest, JoinsLikeClips) {
    for (const std::string container : {"mp4", "mov", "mkv"}) {
        SCOPED_TRACE(container);
        const std::string red = makeClip(coloured("red", 1, container));
        const std::string blue = makeClip(coloured("blue", 2, container));
        EXPECT_TRUE(runBlocking(CorvantaSdkVideo->canConcat(files({red, blue}))));
        const RequestPointer request = concat({red, blue}, container);
        const std::string output = runBlocking(request->process()).videoURL.path();
        EXPECT_EQ(output, directory_.file(container + "." + container));
        const auto information = probed(output);
        EXPECT_NEAR(static_cast<double>(information.durationMillis), 3000, 50);
        EXPECT_EQ(information.videos, probed(red).videos);
        EXPECT_EQ(information.audios, probed(red).audios);
        EXPECT_EQ(packets(output), 90);
        EXPECT_TRUE(isNear(meanColour(output, 0.5), {254, 0, 0}));
        EXPECT_TRUE(isNear(meanColour(output, 2), {0, 0, 254}));
        EXPECT_TRUE(fs::is_empty(documents_));
        EXPECT_EQ(failureOf(fetch(request->id)), "operationAlreadyCompleted");
        EXPECT_EQ(fetch(request->id)->outputPath()->path(), output);
    }
    // By its name ffmpeg would write a playlist and segments.
    const std::string playlist = directory_.file("list.m3u8");
    fs::copy_file(makeClip({}), playlist);
    EXPECT_EQ(failureOf(concat({playlist, playlist}, "segments")), "concatFailed");
    EXPECT_FALSE(fs::exists(directory_.file("segments0.ts")));
}

TEST_F(RequestFilesTest, SeesWhatKeepsClipsFromBeingJoined) {
    const auto clip = [](const std::string& codecs, const std::string& container = "mov") {
        return Clip{.seconds = 0.3, .container = container, .codecs = codecs};
    };
    const std::string x264 = "-c:v libx264 -preset ultrafast -bf 0 -g 30 -pix_fmt yuv420p ";
    const Clip plain = clip(x264 + "-c:a pcm_s16le");
    Clip turned = plain;
    turned.rotation = 90;
    const std::string videos = "invalidInputFiles(differentVideoTracks)";
    const std::string audios = "invalidInputFiles(differentAudioTracks)";
    for (const auto& [different, reason] :
         {std::pair(turned, videos),
          {clip(x264 + "-tag:v avc3 -c:a pcm_s16le"), videos},
          {clip(x264 + "-c:a pcm_s24le"), audios},
          {clip(x264 + "-c:a pcm_s16le", "mkv"), std::string("invalidInputFiles(differentFormats)")}}) {
        const std::string first = makeClip(plain);
        const std::string second = makeClip(different);
        SCOPED_TRACE(second);
        EXPECT_FALSE(runBlocking(CorvantaSdkVideo->canConcat(files({first, second}))));
        const RequestPointer request = concat({first, second});
        EXPECT_EQ(failureOf(request), reason);
        EXPECT_EQ(fetch(request->id)->status, Status::idle);
    }
    EXPECT_FALSE(fs::exists(directory_.file("out.mov")));
}

TEST_F(RequestFilesTest, CancelsLongRunsAndLeavesAReadableFile) {
    const std::string clip = makeClip({.seconds = 20, .pictures = {{.width = 1280, .height = 720}}});
    std::atomic<std::int64_t> frames = 0;
    FFmpegKitConfig::enableStatisticsCallback(
        [&frames](const Statistics& statistics) { frames = statistics.frame; });
    asio::thread_pool pool(1);
    const auto cancelled = [&](const RequestPointer& request, const std::string& failure) {
        frames = 0;
        auto result = asio::co_spawn(pool, request->process(), asio::use_future);
        EXPECT_TRUE(eventually([&frames] { return frames > 30; }));
        fetch(request->id)->cancel();
        EXPECT_EQ(test::failureOf([&] { result.get(); }), failure);
        EXPECT_EQ(fetch(request->id)->status, Status::cancelled);
        const auto written = probed(directory_.file("out.mp4"));
        EXPECT_TRUE(written.durationMillis > 900 && written.durationMillis < 19'000);
        EXPECT_EQ(written.videos.size(), 1U);
        EXPECT_THAT(childrenOf(getpid()), testing::IsEmpty());
    };
    cancelled(CorvantaSdkVideo->MergeBuilder(files({clip, clip}), place("out")).build(), "mergeFailed");
    auto encode = CorvantaSdkVideo->EncodingBuilder(files({clip}).front(), place("out"));
    encode.width = 1920;
    cancelled(encode.build(), "encodingFailed");
    FFmpegKitConfig::enableStatisticsCallback(nullptr);
}

// ffmpeg itself calls a run a success that finds the disk full where it ends the file.
TEST_F(RequestFilesTest, AFileWithoutItsEndIsAFailure) {
    const std::string clip = makeClip({.seconds = 0.5});
    const std::string matroska = makeClip({.seconds = 0.5, .container = "mkv"});
    const std::map<std::string, std::function<RequestPointer()>> runs = {
        {"concatFailed",
         [&] {
             return concat({clip, clip});
         }},
        {"concatFailed of mkv",
         [&] {
             return concat({matroska, matroska});
         }},
        {"mergeFailed",
         [&] {
             return CorvantaSdkVideo->MergeBuilder(files({clip, clip}), place("out")).build();
         }},
        {"encodingFailed",
         [&] { return CorvantaSdkVideo->EncodingBuilder(files({clip}).front(), place("out")).build(); }}};
    for (const auto& [failure, build] : runs) {
        const std::string output = runBlocking(build()->process()).videoURL.path();
        const auto blocks = (fs::file_size(output) - 1) / 512;
        const FakeProgram full("CORVANTA_FFMPEG",
                               "trap '' XFSZ; ulimit -f " + std::to_string(blocks) + "; exec ffmpeg \"$@\"");
        // Without its log, a Matroska file that lacks its index alone looks whole.
        const bool isMatroska = fs::path(output).extension() == ".mkv";
        for (const char* level : {"error", isMatroska ? "error" : "quiet"}) {
            SCOPED_TRACE(failure + " " + level);
            FFmpegKitConfig::setLogLevel(level);
            const RequestPointer request = build();
            EXPECT_EQ(failureOf(request), failure.substr(0, failure.find(' ')));
            EXPECT_EQ(fetch(request->id)->status, Status::error);
        }
    }
    FFmpegKitConfig::setLogLevel("error");
}

TEST_F(RequestFilesTest, EncodesAndMergesWhatWasChosen) {
    const std::string rich =
        makeClip({.seconds = 1, .pictures = {{}, {.source = "color=c=green"}}, .sounds = {{}, {}}});
    auto encode = CorvantaSdkVideo->EncodingBuilder(files({rich}).front(), place("small clip"));
    encode.framesRate = CorvantaSdkVideoFrameRate::twentyFiveFps;
    encode.videoTracks = {{1, 320, 240}};
    encode.audioTracks = {3};
    const auto request = encode.build();
    EXPECT_EQ(failureOf(fetch(request->id)), "");
    const std::string output = directory_.file("small clip.mp4");
    const auto information = probed(output);
    ASSERT_EQ(information.videos.size(), 1U);
    EXPECT_EQ(information.videos[0].width, 320);
    EXPECT_EQ(information.videos[0].frameRate, "25/1");
    EXPECT_EQ(information.audios.size(), 1U);
    EXPECT_NEAR(static_cast<double>(information.durationMillis), 1000, 100);
    EXPECT_TRUE(isNear(meanColour(output, 0.5), {0, 128, 0}));

    // A merge that ffmpeg refuses is told in the log, and can be run again once its cause is gone.
    auto merge = CorvantaSdkVideo->MergeBuilder(files({rich, rich}), place("no/such/folder/out"));
    const auto refused = merge.build();
    EXPECT_EQ(failureOf(refused), "mergeFailed");
    EXPECT_EQ(fetch(refused->id)->status, Status::error);
    fs::create_directories(directory_.file("no/such/folder"));
    EXPECT_EQ(failureOf(refused), "operationStillsInProgress");
    EXPECT_EQ(failureOf(fetch(refused->id)), "");
    EXPECT_NEAR(static_cast<double>(probed(directory_.file("no/such/folder/out.mp4")).durationMillis), 2000,
                100);
}

} // namespace
} // namespace corvanta
