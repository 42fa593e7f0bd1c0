#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"
#include "support/ScriptedExecutor.hpp"
#include "support/SessionProbe.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/ProbeOutput.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>
#include <platform/AssetReader.hpp>
#include <platform/InProcessProbe.hpp>
#include <platform/ProbeMemory.hpp>

#include <boost/algorithm/string/join.hpp>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace corvanta::test {
namespace {

using testing::ElementsAre;

TEST(VideosInformationGeneratorTest, OrderOfStepsAndOfFiles) {
    const TemporaryDirectory directory;
    std::vector<URL> videos;
    std::vector<std::string> told;
    for (const char* name : {"b", "a", "c"}) {
        writeFile(directory.file(name), "");
        videos.push_back(URL::fromFilePath(directory.file(name)));
        told.push_back("info event_video_get_info: Get info called with videoPath: " +
                       videos.back().absoluteString());
    }
    const auto executor = std::make_shared<ScriptedExecutor>();
    const VideosInformationGenerator generator(std::make_shared<CorvantaCredentialsManagerImp>(), executor);
    const auto failure = [&](std::vector<URL> input) {
        return failureOf([&] { runBlocking(generator.getVideosInformation(std::move(input))); });
    };
    RecordedLog log;
    const auto records = runBlocking(generator.getVideosInformation(videos));
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[1].url, videos[1]);
    EXPECT_EQ(records[1].path, videos[1].absoluteString());
    EXPECT_THAT(std::exchange(*executor->notes, {}), ElementsAre("probe b", "probe a", "probe c"));
    EXPECT_EQ(log.take(), told);

    executor->onProbe = [&](const URL& url) {
        return url == videos[1] ? throw CorvantaSdkVideoError(CorvantaSdkVideoError::missingVideoTrackToMerge)
                                : plainInformation(url);
    };
    EXPECT_EQ(failure(videos), "missingVideoTrackToMerge");
    EXPECT_THAT(std::exchange(*executor->notes, {}), ElementsAre("probe b", "probe a"));
    EXPECT_EQ(log.take().back(),
              "info event_video_get_info: Error getting video info: " + videos[1].absoluteString() +
                  ". The operation couldn’t be completed. (CorvantaSdkVideoError error 17.)");

    const URL missing = URL::fromFilePath(directory.file("missing"));
    EXPECT_EQ(runBlocking(generator.generateAssetsMetadata({missing})).size(), 1U);
}

TEST(ProbeTest, ShapeOnScreen) {
    struct Case {
        const char* name;
        Clip clip;
        std::int64_t rotation;
        VideoSize size;
        Orientation orientation;
    };
    const Picture upright{.width = 120, .height = 160};
    const Picture square{.width = 128, .height = 128};
    for (const Case& expected :
         {Case{"landscape", {}, 0, {160, 120}, Orientation::landscape},
          {"portrait", {.pictures = {upright}}, 0, {120, 160}, Orientation::portrait},
          {"square", {.pictures = {square}}, 0, {128, 128}, Orientation::portrait},
          {"-90", {.rotation = -90}, -90, {120, 160}, Orientation::portrait},
          {"90", {.rotation = 90}, 90, {120, 160}, Orientation::portrait},
          {"180", {.rotation = 180}, -180, {160, 120}, Orientation::landscape},
          {"the last track counts", {.pictures = {Picture{}, upright}}, 0, {120, 160}, Orientation::portrait},
          {"without sound", {.sounds = {}}, 0, {160, 120}, Orientation::landscape},
          {"with an upright cover", {.cover = true}, 0, {160, 120}, Orientation::landscape}}) {
        SCOPED_TRACE(expected.name);
        const std::string path = makeClip(expected.clip);
        const auto information = probed(path);
        EXPECT_EQ(information.path, URL::fromFilePath(path).absoluteString());
        EXPECT_EQ(information.size, static_cast<std::int64_t>(std::filesystem::file_size(path)));
        EXPECT_NEAR(static_cast<double>(information.durationMillis), 1000, 60);
        EXPECT_EQ(information.rotation(), expected.rotation);
        EXPECT_EQ(information.videoSize, expected.size);
        EXPECT_EQ(information.orientation, expected.orientation);
        EXPECT_EQ(information.frameRate(), CorvantaSdkVideoFrameRate::thirtyFps);
        EXPECT_EQ(information.videos.size(), expected.clip.pictures.size());
        EXPECT_EQ(information.hasAudio(), !expected.clip.sounds.empty());
        EXPECT_EQ(information.audioCodec(), expected.clip.sounds.empty() ? "" : "aac");
        EXPECT_EQ(information.audioSampleRates(), expected.clip.sounds.empty() ? 0.0 : 48000.0);
        // Only the probe's own +90 turns the sides of a track.
        EXPECT_EQ(information.videos[0].rotatedWidth == information.videos[0].height &&
                      expected.rotation != 0,
                  expected.rotation == 90);
    }
    const auto sound = probed(makeClip(
        {.pictures = {}, .sounds = {{}, {.layout = "mono"}}, .container = "m4a", .codecs = "-c:a aac"}));
    EXPECT_TRUE(sound.videos.empty());
    EXPECT_EQ(sound.videoSize, VideoSize{});
    EXPECT_EQ(sound.orientation, Orientation::portrait);
    EXPECT_EQ(sound.rotation(), 0);
    EXPECT_EQ(sound.videoCodec(), "");
    EXPECT_EQ(sound.frameRate(), CorvantaSdkVideoFrameRate::unknown);
    EXPECT_EQ(
        probed(makeClip({.pictures = {}, .container = "mp3", .codecs = "-c:a libmp3lame", .cover = true}))
            .videos.size(),
        0U);
    ASSERT_EQ(sound.audios.size(), 2U);
    EXPECT_EQ(sound.audios[1].channelLayout, "mono");
    // Matroska states no duration for a stream.
    const auto matroska = probed(makeClip({.container = "mkv"}));
    EXPECT_EQ(matroska.videos[0].durationMillis, 0);
    EXPECT_NEAR(static_cast<double>(matroska.durationMillis), 1000, 60);
}

TEST(ProbeTest, WhatCannotBeProbed) {
    const TemporaryDirectory directory;
    const std::string clip = readFile(makeClip({}));
    writeFile(directory.file("empty"), "");
    writeFile(directory.file("text"), "hello\n");
    writeFile(directory.file("garbage"), std::string(100000, '\x5a'));
    writeFile(directory.file("truncated"), clip.substr(0, clip.size() / 2));
    writeFile(directory.file("unreadable"), clip);
    mkfifo(directory.file("pipe").c_str(), 0600);
    std::filesystem::create_symlink("pipe", directory.path() / "link");
    // Texts that lead to a file which nobody named, the first and the second for ever.
    const std::string other = makeClip({.container = "ts"});
    writeFile(directory.file("live"), "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:2,\n");
    writeFile(directory.file("list"), "ffconcat version 1.0\nfile ts.ts\nduration 99999999\n");
    std::filesystem::copy(other, directory.file("ts.ts"));
    writeFile(directory.file("playlist"),
              "#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:1,\n" + other + "\n#EXT-X-ENDLIST\n");
    writeFile(directory.file("manifest"),
              R"(<MPD xmlns="urn:mpeg:dash:schema:mpd:2011" type="static" mediaPresentationDuration="PT1S">)"
              R"(<Period><AdaptationSet contentType="video"><Representation id="1" bandwidth="1"><BaseURL>)" +
                  makeClip({}) + "</BaseURL></Representation></AdaptationSet></Period></MPD>\n");
    for (const char* name : {"empty", "text", "garbage", "truncated", "pipe", "link", "missing", "", "live",
                             "list", "playlist", "manifest"}) {
        const std::string path = directory.file(name);
        EXPECT_EQ(failureOf([&] { probed(path); }), "getInformationFailed") << name;
        EXPECT_THAT(failureOf([&] { AssetReader(URL::fromFilePath(path)).duration(); }),
                    testing::StartsWith("AssetReader error -"))
            << name;
    }
    if (geteuid() != 0) {
        chmod(directory.file("unreadable").c_str(), 0);
        EXPECT_EQ(failureOf([&] { probed(directory.file("unreadable")); }), "getInformationFailed");
    }
    const ScopedVariable noProgram("CORVANTA_FFPROBE", "/no/such/ffprobe");
    EXPECT_EQ(failureOf([&] { probed(makeClip({})); }), "getInformationFailed");
}

TEST(ProbeTest, WhatFfprobeMaySay) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("a %41.txt");
    writeFile(path, "no media");
    for (const auto& [script, outcome] :
         {std::pair("exit 0", "getInformationFailed"),
          {"echo '{}'", "getInformationFailed"},
          {"echo '{\"format\": {}, \"streams\": []}'; exit 1", "getInformationFailed"},
          {"echo '{\"format\": {}, \"streams\": []}'; kill -KILL $$", "getInformationFailed"},
          {"echo '{\"format\": {}, \"streams\": [3]}'", "getInformationFailed"},
          {"head -c 80M /dev/zero", "getInformationFailed"},
          {"echo '{\"format\": {\"duration\": \"1e11\"}, \"streams\": []}'", "getInformationFailed"},
          {"echo '{\"format\": {}, \"streams\": [{\"codec_type\": \"video\"}]}'", "missingVideoTrackToMerge"},
          {"echo '{\"format\": {}, \"streams\": [{\"codec_type\": \"audio\"}]}'; echo noise >&2", ""}}) {
        const FakeProgram fake("CORVANTA_FFPROBE", script);
        EXPECT_EQ(failureOf([&] { probed(path); }), outcome) << script;
    }
    const FakeProgram fake("CORVANTA_FFPROBE",
                           "printf '%s\\n' \"$@\" >\"$here/arguments\"\n"
                           "echo '{\"format\": {\"duration\": \"2.0019\"}, \"streams\": []}'\n");
    EXPECT_EQ(probed(directory.file("a %41.txt")).durationMillis, 2001);
    EXPECT_THAT(readFile(fake.file("arguments")),
                testing::EndsWith("\n-i\nfile://" + path +
                                  "\n-v\nquiet\n-print_format\njson\n-show_format\n-show_streams\n"
                                  "-hide_banner\n"));
    const FakeProgram endless("CORVANTA_FFPROBE",
                              "echo '{\"format\": {\"duration\": \"nan\"}, \"streams\": []}'");
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(probed("/etc/passwd"), "Fatal error: Double value cannot be converted to Int64");
}

const std::vector<std::string> plainWords = {"-v",           "quiet",         "-print_format", "json",
                                             "-show_format", "-show_streams", "-hide_banner"};

// What ffprobe itself says, without what only it knows of: options of decoders, and details of side data.
std::optional<nlohmann::json> toldByFfprobe(const std::string& path) {
    std::vector<std::string> arguments = {"-i", "file://" + path};
    std::ranges::copy(plainWords, std::back_inserter(arguments));
    Program program("ffprobe", arguments);
    if (program.wait() != 0) {
        return std::nullopt;
    }
    auto told = nlohmann::json::parse(program.output());
    for (auto& stream : told["streams"]) {
        for (const char* option : {"is_avc", "nal_length_size", "quarter_sample", "divx_packed"}) {
            stream.erase(option);
        }
        for (auto& data : stream.contains("side_data_list") ? stream["side_data_list"] : stream["none"]) {
            nlohmann::json kept;
            for (const char* key : {"side_data_type", "rotation"}) {
                if (data.contains(key)) {
                    kept[key] = data[key];
                }
            }
            data = kept;
        }
        stream.erase("none");
    }
    return told;
}

std::string withByteChanged(std::string bytes, std::size_t place) {
    bytes[place % bytes.size()] ^= '\x55';
    return bytes;
}

TEST(ProbeTest, AnswersInProcessAsFfprobeDoes) {
    const std::string mpeg4 = "-c:v mpeg4 -c:a mp2";
    const std::string x264 = "-c:v libx264 -preset ultrafast -bf 2 -pix_fmt yuv420p -c:a aac ";
    const std::string odd = "\xff\xfe \"odd\" \\ \xc3\xbc \x01";
    std::vector<std::string> paths = {
        makeClip({}),
        makeClip(
            {.pictures = {{.rate = "30000/1001"}, {}}, .sounds = {{}, {.layout = "mono"}}, .rotation = 90}),
        makeClip({.container = "mov", .codecs = x264 + "-timecode 01:02:03:04", .rotation = 180}),
        makeClip({.container = "mkv", .codecs = x264}),
        makeClip({.container = "ts", .codecs = x264}),
        makeClip({.container = "avi", .codecs = mpeg4}),
        makeClip({.container = "mpg", .codecs = mpeg4}),
        makeClip({.container = "webm", .codecs = "-c:v libvpx -deadline realtime -c:a libopus"}),
        makeClip({.codecs = x264 + "-movflags frag_keyframe+empty_moov"}),
        makeClip({.codecs = x264 + "-vf select=lt(mod(n\\,7)\\,4) -vsync vfr"}),
        makeClip({.container = "mov", .codecs = "-c:v rawvideo -pix_fmt uyvy422 -c:a pcm_s16le"}),
        makeClip({.pictures = {}, .container = "mp3", .codecs = "-c:a libmp3lame", .cover = true})};
    for (const char* container : {"wav", "flac", "ogg", "m4a"}) {
        paths.push_back(makeClip({.pictures = {}, .container = container, .codecs = ""}));
    }
    const TemporaryDirectory directory;
    for (std::size_t clip = 0; clip < 6; ++clip) {
        const std::string bytes = readFile(paths[clip]);
        const std::string extension = std::filesystem::path(paths[clip]).extension();
        const std::string tagged = directory.file("tagged \xc3\xbc " + std::to_string(clip) + extension);
        runTool("ffmpeg",
                {"-v", "error", "-i", paths[clip], "-c", "copy", "-metadata", "title=" + odd, tagged});
        paths.push_back(tagged);
        for (const std::size_t place : {bytes.size() / 3, bytes.size() - 40}) {
            const std::string name = directory.file(std::to_string(clip) + "-" + std::to_string(place));
            writeFile(name + "-cut" + extension, bytes.substr(0, place));
            writeFile(name + "-changed" + extension, withByteChanged(bytes, place));
            paths.insert(paths.end(), {name + "-cut" + extension, name + "-changed" + extension});
        }
    }
    std::size_t answered = 0;
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        const auto answer = probeInProcess("file://" + path, {});
        const auto told = toldByFfprobe(path);
        ASSERT_EQ(answer.has_value(), told.has_value());
        if (answer) {
            ++answered;
            auto ours = nlohmann::json::parse(*answer);
            EXPECT_EQ(ours, *told);
        }
    }
    EXPECT_GT(answered, paths.size() / 2);
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_FALSE(probeInProcess(paths.front(), stopped.get_token()));
}

// As old as the checkout, where a clip of the test's own is too young to be remembered.
TEST(ProbeTest, RemembersAFileForAsLongAsItIsTheSame) {
    const std::string file = KEPT_CLIP;
    const auto state = settledState(file);
    ASSERT_TRUE(state);
    EXPECT_FALSE(ProbeMemory::shared().find(file, *state));
    const auto answer = probeInProcess(file, {});
    ASSERT_TRUE(answer);
    EXPECT_EQ(ProbeMemory::shared().find(file, *state)->text, answer);
    EXPECT_EQ(probedDisplayTransform(file), AffineTransform{});
    FileState other = *state;
    other.changed += std::chrono::nanoseconds(1);
    EXPECT_FALSE(ProbeMemory::shared().find(file, other));

    const TemporaryDirectory directory;
    writeFile(directory.file("young"), readFile(file));
    EXPECT_FALSE(settledState(directory.file("young")));
    EXPECT_FALSE(settledState(directory.path()));

    ProbeMemory small(5);
    const AffineTransform turned{0, 1, -1, 0};
    small.keep("a", *state, {"1234", {}});
    small.keep("a", other, {"12", turned});
    small.keep("b", *state, {"345", {}});
    EXPECT_EQ(small.find("a", other)->text, "12");
    EXPECT_EQ(small.findDisplayTransform(other), turned);
    EXPECT_FALSE(small.findDisplayTransform(*state));
    small.keep("c", *state, {"6", {}});
    EXPECT_FALSE(small.find("a", other));
    EXPECT_TRUE(small.find("b", *state) && small.find("c", *state));
}

TEST(ProbeTest, NeedsNoProgramForItsOwnQuestion) {
    const TemporaryDirectory directory;
    writeFile(directory.file("text"), "no media");
    const auto question = [](const std::string& path) {
        return "-i \"file://" + path + "\" " + boost::algorithm::join(plainWords, " ");
    };
    const std::string plain = question(makeClip({}));
    const ScopedVariable nowhere("PATH", directory.path());
    for (const auto& [command, inProcess, code] :
         {std::tuple(plain, true, 0),
          {plain + " -show_chapters", true, ReturnCode::notStarted},
          {question(directory.file("text")), true, ReturnCode::notStarted},
          {plain, false, ReturnCode::notStarted}}) {
        FFmpegKitConfig::setProbingInProcess(inProcess);
        const SessionProbe session(command, Tool::ffprobe);
        EXPECT_EQ(session.wait(), code) << command;
        EXPECT_EQ(session.state(), code == 0 ? SessionState::completed : SessionState::failed);
        EXPECT_EQ(parseProbeOutput(session.output()).has_value(), code == 0);
        EXPECT_EQ(session.completions(), 1);
    }
    FFmpegKitConfig::setProbingInProcess(true);
}

} // namespace
} // namespace corvanta::test
