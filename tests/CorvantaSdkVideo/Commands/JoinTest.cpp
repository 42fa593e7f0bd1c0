#include "CorvantaSdkVideo/Commands/EngineBench.hpp"
#include "support/DecodedMedia.hpp"
#include "support/MediaFixtures.hpp"

#include <CorvantaSdkVideo/Commands/Join/JoinInspector.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <gmock/gmock.h>

namespace corvanta::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using Way = CorvantaSdkVideoJoinWay;
using Options = CorvantaSdkVideoJoinOptions;
using Words = std::vector<std::string>;

const std::string x264 = "-c:v libx264 -preset ultrafast -crf 16 -g 30 -pix_fmt yuv420p -c:a aac -ac 2";

Clip clipOf(const std::string& source, double seconds, std::string container = "mp4",
            std::string codecs = x264) {
    return {.seconds = seconds,
            .pictures = {{.source = source, .width = 320, .height = 240}},
            .container = std::move(container),
            .codecs = std::move(codecs)};
}

std::vector<CorvantaSdkVideoFile> filesOf(const Words& paths) {
    std::vector<CorvantaSdkVideoFile> files;
    for (const std::string& path : paths) {
        files.emplace_back(URL::fromFilePath(path));
    }
    return files;
}

/// The module's own store and engines.
struct JoinRun {
    RecordedLog log;
    UserFolders folders;

    JoinRun() {
        SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    }

    CorvantaSdkVideoJoinInspection inspect(const Words& paths, const Options& options = {}) const {
        return runBlocking(CorvantaSdkVideo->joinInspection(filesOf(paths), options));
    }

    // Built as a host builds it, and run as another process would: from its stored row.
    std::string join(const Words& paths, const std::string& name, const Options& options = {}) const {
        auto builder = CorvantaSdkVideo->JoinBuilder(
            filesOf(paths), CorvantaSdkVideoFileDescriptor::custom(folders.file(name)));
        builder.options = options;
        const auto built = runBlocking(builder.build());
        for (const auto& stored : CorvantaSdkVideo->getRequests(CorvantaSdkVideoRequest::Status::idle)) {
            if (stored->id == built->id) {
                return runBlocking(stored->process()).videoURL.path();
            }
        }
        throw std::runtime_error("not stored");
    }
};

// A file of the given picture and sound, never read.
JoinFile fileOf(double width, double height, double rate, std::int64_t millis,
                std::int64_t sampleRate = 48000, std::int64_t channels = 2) {
    static int number = 0;
    CorvantaSdkVideoTrackInformation video(0, static_cast<std::int64_t>(width),
                                           static_cast<std::int64_t>(height), "h264", "avc1", "yuv420p", 0,
                                           "30/1", 0, millis);
    CorvantaSdkVideoAudioTrackInformation audio{.index = 1,
                                                .codec = "aac",
                                                .codecTag = "mp4a",
                                                .sampleFormat = "fltp",
                                                .sampleRate = sampleRate,
                                                .channels = channels,
                                                .channelLayout = {}};
    CorvantaSdkVideoInformation information(URL::fromFilePath("/" + std::to_string(++number) + ".mp4"), 1000,
                                            millis, "mov,mp4,m4a,3gp,3g2,mj2", {video}, {audio},
                                            Orientation::landscape, {width, height});
    return {information,
            {{.number = 0, .isPicture = true, .codecId = 27, .rate = rate}, {.number = 1, .codecId = 86018}}};
}

TEST(JoinFormTest, AsMostSecondsAre) {
    using Files = std::vector<JoinFile>;
    for (const auto& [files, options, told] : std::vector<std::tuple<Files, Options, std::string>>{
             {{fileOf(640, 360, 30, 5000), fileOf(360, 640, 25, 3000)}, {}, "640x360 30 48000 2"},
             {{fileOf(640, 360, 30, 3000), fileOf(360, 640, 25, 5000, 44100, 1)}, {}, "360x640 25 44100 1"},
             // Two short ones of one size outweigh the longest.
             {{fileOf(640, 360, 24, 4000), fileOf(1280, 720, 50, 2500), fileOf(1280, 720, 50, 2500)},
              {},
              "1280x720 50 48000 2"},
             {{fileOf(641, 361, 29.97, 5000), fileOf(640, 360, 30, 3000)}, {}, "642x362 30 48000 2"},
             {{fileOf(64, 32, 15, 5000), fileOf(640, 360, 30, 3000)}, {}, "256x128 30 48000 2"},
             {{fileOf(16000, 9000, 12.5, 5000), fileOf(640, 360, 30, 3000)}, {}, "8190x4606 25 48000 2"},
             {{fileOf(640, 360, 23.976, 5000, 192000, 7), fileOf(64, 36, 30, 3000)},
              {},
              "640x360 24 96000 6"},
             {{fileOf(640, 360, 120, 5000, 6000, 9), fileOf(64, 36, 30, 3000)}, {}, "640x360 60 0 8"},
             {{fileOf(640, 360, 40, 5000), fileOf(64, 36, 30, 3000)}, {}, "640x360 50 48000 2"},
             {{fileOf(640, 360, 0, 5000), fileOf(64, 36, 0, 3000)}, {}, "640x360 30 48000 2"},
             {{fileOf(640, 360, 30, 5000), fileOf(640, 360, 30, 3000)}, {.width = 320}, "320x180 30 48000 2"},
             {{fileOf(640, 360, 30, 5000), fileOf(640, 360, 30, 3000)},
              {.height = 720},
              "1280x720 30 48000 2"},
             {{fileOf(640, 360, 30, 5000), fileOf(640, 360, 30, 3000)},
              {.width = 200, .height = 200},
              "200x200 30 48000 2"},
             {{fileOf(640, 360, 30, 5000), fileOf(640, 360, 30, 3000)},
              {.framesRate = CorvantaSdkVideoFrameRate(CorvantaSdkVideoFrameRate::fiftyFps)},
              "640x360 50 48000 2"}}) {
        const auto join = joinOf(files, options);
        EXPECT_EQ(join.way, Way::merged);
        EXPECT_EQ(std::to_string(join.width.value_or(0)) + "x" + std::to_string(join.height.value_or(0)) +
                      " " + std::string(join.framesRate.rawValue()) + " " +
                      std::to_string(join.encoding->audioSampleRate.value_or(0)) + " " +
                      std::to_string(join.encoding->audioChannels.value_or(0)),
                  told);
        EXPECT_FALSE(join.obstacle.empty());
    }
    const std::vector<JoinFile> alike{fileOf(640, 360, 30, 5000), fileOf(640, 360, 29.9, 3000)};
    EXPECT_EQ(joinOf(alike, {}).way, Way::copied) << "Each picture states its time.";
    EXPECT_EQ(failureOf([&] { joinOf(alike, {.height = 100}); }), "invalidResolution");
    EXPECT_EQ(failureOf([&] { joinOf(alike, {.encoding = CorvantaSdkVideoEncoding{.crf = 99}}); }),
              "mergeFailed");
}

TEST(JoinFormTest, WhatKeepsFilesFromBeingCopied) {
    const auto changed = [](auto change) {
        JoinFile file = fileOf(640, 360, 30, 1000);
        change(file);
        return copyObstacle({fileOf(640, 360, 30, 1000), file});
    };
    const auto obstacles = {
        std::pair("the width", changed([](JoinFile& file) { file.information.videos[0].width = 320; })),
        {"the profile of track 0", changed([](JoinFile& file) { file.tracks[0].profile = 100; })},
        {"what a decoder is told of track 0",
         changed([](JoinFile& file) { file.tracks[0].parameters = {1}; })},
        {"the shape of pixels", changed([](JoinFile& file) { file.tracks[0].aspectWidth = 4; })},
        {"the order of fields", changed([](JoinFile& file) { file.tracks[0].isInterlaced = true; })},
        {"there are 1 tracks", changed([](JoinFile& file) { file.tracks.pop_back(); })},
        {"is a sound where", changed([](JoinFile& file) { std::swap(file.tracks[0], file.tracks[1]); })},
        {"the format is avi", changed([](JoinFile& file) { file.information.format = "avi"; })},
        {"", changed([](JoinFile& file) { file.tracks[0].rate = 25; })},
        {"", changed([](JoinFile& file) { file.information.videos[0].frameRate = "25/1"; })}};
    for (const auto& [words, obstacle] : obstacles) {
        EXPECT_THAT(obstacle, HasSubstr(words));
        EXPECT_EQ(obstacle.empty(), std::string(words).empty());
    }
}

TEST(JoinFormTest, OverhangingSoundShowsNoBlackBetweenFiles) {
    std::vector<CorvantaSdkVideoInformation> files;
    for (const auto& [whole, pictures, sound] : std::vector<std::array<std::int64_t, 3>>{{1020, 1000, 1020},
                                                                                         {1010, 1000, 980},
                                                                                         {1020, 1000, 1020},
                                                                                         {1500, 1000, 1500},
                                                                                         {1000, 1000, 990}}) {
        JoinFile file = fileOf(640, 360, 30, pictures);
        file.information.durationMillis = whole;
        file.information.audios[0].durationMillis = sound;
        files.push_back(file.information);
    }
    std::vector<std::pair<std::int64_t, std::int64_t>> lengths;
    for (const auto& file : withoutOverhang(files)) {
        lengths.emplace_back(file.durationMillis, file.audios[0].durationMillis);
    }
    EXPECT_THAT(lengths,
                testing::ElementsAre(std::pair(1000, 1020), std::pair(1000, 980), std::pair(1050, 1050),
                                     std::pair(1500, 1500), std::pair(1000, 990)));
}

// Whatever the files are called, every picture and all sound of each is there, once, and nothing between.
TEST(JoinTest, CopiesWhatIsAlike) {
    const JoinRun run;
    const std::string vp8 = "-c:v libvpx -deadline realtime -c:a libopus";
    struct Case {
        Clip first;
        Clip second;
        std::optional<std::string> firstName = {};
        std::optional<std::string> wanted = {};
        std::string extension = "mp4";
        Way way = Way::copied;
    };
    const auto red = [](auto... rest) { return clipOf("color=c=red", 2, rest...); };
    const auto blue = [](auto... rest) { return clipOf("color=c=blue", 1, rest...); };
    const std::vector<Case> cases{
        {red(), blue()},
        {red(), blue(), "no words.txt"},
        {red(), blue("mov"), "a name with é and 'quotes'.avi"},
        {red("mov"), blue("mov"), {}, {}, "mov"},
        {red("mkv"), blue("mkv"), {}, {}, "mkv"},
        {red("mkv"), blue("mkv"), "without"},
        {red("mkv"), blue("mkv"), {}, "mp4", "mp4"},
        {red("ts"), blue("ts"), {}, {}, "ts"},
        {red("webm", vp8), blue("webm", vp8), {}, {}, "webm"},
        {red("webm", vp8), blue("webm", vp8), {}, "mov", "mp4", Way::merged},
        {red(), blue("mp4", x264 + " -profile:v high -bf 3 -preset slow"), {}, {}, "mp4", Way::merged}};
    int number = 0;
    for (const Case& now : cases) {
        std::string first = makeClip(now.first);
        if (now.firstName) {
            const std::string renamed = run.folders.file(*now.firstName);
            std::filesystem::copy_file(first, renamed, std::filesystem::copy_options::overwrite_existing);
            first = renamed;
        }
        const Words paths{first, makeClip(now.second)};
        SCOPED_TRACE(testing::PrintToString(paths) + now.wanted.value_or(""));
        const Options options{.fileExtension = now.wanted};
        const auto inspection = run.inspect(paths, options);
        EXPECT_EQ(inspection.way, now.way) << inspection.obstacle;
        const std::string extension = now.first.container == "mkv" && now.firstName ? "mkv" : now.extension;
        EXPECT_EQ(inspection.fileExtension, extension);
        EXPECT_NEAR(inspection.seconds, 3, 0.1);
        const std::string output = run.join(paths, "out" + std::to_string(++number), options);
        EXPECT_EQ(std::filesystem::path(output).extension(), "." + extension);
        const auto pictures = decodedVideo(output);
        // A merge fills the 14 ms up by which these sounds begin earlier.
        EXPECT_NEAR(static_cast<double>(pictures.size()), 90, now.way == Way::copied ? 0 : 1);
        EXPECT_TRUE(isNear(pictures.at(30).frame.mean(), {255, 0, 0}, 40));
        EXPECT_TRUE(isNear(pictures.back().frame.mean(), {0, 0, 255}, 40));
        EXPECT_NEAR(pictures.back().time - pictures.front().time, 89 / 30.0, 0.05);
        EXPECT_NEAR(decodedSound(output).end() - pictures.front().time, 3, 0.1);
    }
    EXPECT_THAT(namesIn({Directories::documents().path()}), IsEmpty());
}

// Tracks that state no length are not lengthened, and each sound begins with its picture.
TEST(JoinTest, MergesWhatIsNot) {
    const JoinRun run;
    const std::string webm = makeClip({.seconds = 3,
                                       .pictures = {{.source = "color=c=red", .width = 320, .height = 240}},
                                       .sounds = {{.frequency = 400, .seconds = 2}},
                                       .container = "webm",
                                       .codecs = "-c:v libvpx -deadline realtime -c:a libopus"});
    const std::string live = run.folders.file("live.webm");
    runTool("ffmpeg", {"-v", "error", "-i", webm, "-c", "copy", "-live", "1", live});
    const std::string upright = makeClip({.seconds = 4, .sounds = {{.frequency = 800}}, .rotation = -90});
    const std::string tall = run.join({webm, upright, live}, "tall");
    EXPECT_EQ(probed(tall).videoSize, (VideoSize{320, 240}));
    const DecodedSound sound = decodedSound(tall);
    for (const double begin : {0.0, 7.0}) {
        EXPECT_GT(sound.amplitude(400, begin + 1), 300);
        EXPECT_LT(sound.amplitude(400, begin + 2.5), 100);
    }
    EXPECT_NEAR(sound.onset(800, 2.2, sound.amplitude(800, 5)), 3, 0.05);
    const auto pictures = decodedVideo(tall);
    EXPECT_NEAR(pictures.back().time, 10 - 1 / 30.0, 0.05);
    EXPECT_NEAR(sound.end(), 10, 0.1);

    const std::string up = run.join({upright, webm}, "up", {});
    EXPECT_EQ(probed(up).videoSize, (VideoSize{128, 170})) << "Sides of 120 pixels are too small to encode.";
    EXPECT_EQ(probed(up).videoCodec(), "h264");
    EXPECT_EQ(probed(up).audioSampleRates(), 48000);
}

TEST(JoinTest, KeepsTitleDateAndPlace) {
    const JoinRun run;
    const std::string plain = makeClip(clipOf("color=c=red", 1));
    const std::string other = makeClip(clipOf("color=c=blue", 1, "mp4", "-c:v mpeg4 -c:a aac"));
    for (const auto& [name, tags] : std::vector<std::pair<std::string, Words>>{
             {"tagged.mp4",
              {"title=A day", "creation_time=2020-05-06T07:08:09Z", "location=+48.2000+016.4000/"}},
             {"application.mov",
              {"title=A day", "creation_time=2020-05-06T07:08:09Z",
               "com.apple.quicktime.location.ISO6709=+48.2000+016.4000/"}}}) {
        const std::string first = run.folders.file(name);
        Words words{"-v", "error", "-i", plain, "-c", "copy"};
        if (name == "application.mov") {
            words.insert(words.end(), {"-movflags", "use_metadata_tags"});
        }
        for (const std::string& tag : tags) {
            words.insert(words.end(), {"-metadata", tag});
        }
        words.push_back(first);
        runTool("ffmpeg", words);
        auto encode = CorvantaSdkVideo->EncodingBuilder(
            CorvantaSdkVideoFile(URL::fromFilePath(first)),
            CorvantaSdkVideoFileDescriptor::custom(run.folders.file("encoded " + name)));
        encode.encoding = CorvantaSdkVideoEncoding{.preset = CorvantaSdkVideoEncoding::Preset::ultrafast,
                                                   .faststart = true};
        for (const std::string& output :
             {run.join({first, plain}, "copy of " + name), run.join({first, other}, "merge of " + name),
              runBlocking(encode.build()->process()).videoURL.path()}) {
            const std::string told =
                runTool("ffprobe", {"-v", "error", "-show_entries", "format_tags", "-of", "compact", output});
            for (const std::string text :
                 {"title=A day", "creation_time=2020-05-06T07:08:09", "+48.2000+016.4000/"}) {
                EXPECT_THAT(told, HasSubstr(text)) << output;
            }
        }
    }
}

TEST(JoinTest, StoredFormsAreReadAsTheyWereWritten) {
    EngineBench bench;
    JoinBuilder builder(filesOf({bench.folders.file("a.mp4"), bench.folders.file("b.mp4")}),
                        CorvantaSdkVideoFileDescriptor::custom(bench.folders.file("out")), nullptr,
                        bench.concat, bench.merge, bench.store);
    CorvantaSdkVideoJoinInspection copy;
    copy.fileExtension = "mkv";
    EXPECT_EQ(builder.build(copy)->type, Type::concat);
    EXPECT_EQ(bench.store->getRequest(builder.id)->rawData, R"({"join":{"fileExtension":"mkv"}})");
    EXPECT_EQ(bench.fetch(builder.id)->concatData->joinExtension, "mkv");
    for (const auto& [text, extension] : std::vector<std::pair<std::optional<std::string>, std::string>>{
             {std::nullopt, ""},
             {"{}", ""},
             {R"({"join":null})", ""},
             {R"({"join":{"fileExtension":"../x"}})", ""},
             {R"({"join":{"fileExtension":""}})", ""},
             {R"({"join":{}})", ""},
             {R"({"join":[]})", ""},
             {R"({"join":{"fileExtension":"ts","more":1}})", "ts"}}) {
        const auto data = decode<VideoConcatData::SerializableConcatData>(text);
        EXPECT_EQ(data ? data->joinExtension.value_or("") : "", extension) << text.value_or("");
    }
    const std::string rest = R"("videoTracks":[],"audioTracks":[],"framesRate":"30")";
    for (const auto& [text, isJoin] :
         {std::pair("{" + rest + "}", false), {"{" + rest + R"(,"join":true})", true}}) {
        const auto data = decode<VideoMergeData::SerializableMergeData>(text);
        ASSERT_TRUE(data);
        EXPECT_EQ(data->isJoin, isJoin);
        EXPECT_EQ(jsonRepresentation(*data), text);
    }
}

TEST(JoinTest, RefusesInWordsAndLosesNothing) {
    const JoinRun run;
    const std::string clip = makeClip(clipOf("color=c=red", 1));
    const std::string text = run.folders.file("text.mp4");
    writeFile(text, "words");
    for (const auto& [paths, error] :
         std::vector<std::pair<Words, std::string>>{{{clip}, "notEnoughVideos"},
                                                    {{}, "notEnoughVideos"},
                                                    {{clip, "/no/such.mp4"}, "inputContainsNonExistingFiles"},
                                                    {{clip, text}, "getInformationFailed"}}) {
        EXPECT_THAT(failureOf([&] { run.inspect(paths); }), HasSubstr(error));
    }
    // Files that have changed since the request was built.
    const std::string changing = run.folders.file("changing.mp4");
    std::filesystem::copy_file(clip, changing);
    const auto builder = CorvantaSdkVideo->JoinBuilder(
        filesOf({clip, changing}), CorvantaSdkVideoFileDescriptor::custom(run.folders.file("out")));
    const auto request = runBlocking(builder.build());
    std::filesystem::copy_file(makeClip({}), changing, std::filesystem::copy_options::overwrite_existing);
    EXPECT_THAT(failureOf([&] { runBlocking(request->process()); }), HasSubstr("differentVideoTracks"));
    // More than the disk has room for, of which nothing is begun.
    const std::string vast = run.folders.file("vast.mp4");
    std::filesystem::copy_file(clip, vast);
    std::filesystem::resize_file(vast, 8'000'000'000'000);
    for (const auto& large :
         {CorvantaSdkVideo
              ->ConcatBuilder(filesOf({vast, vast}),
                              CorvantaSdkVideoFileDescriptor::custom(run.folders.file("vast1")))
              .build(),
          runBlocking(CorvantaSdkVideo
                          ->JoinBuilder(filesOf({vast, vast}),
                                        CorvantaSdkVideoFileDescriptor::custom(run.folders.file("vast2")))
                          .build())}) {
        try {
            runBlocking(large->process());
            ADD_FAILURE();
        } catch (const CorvantaSdkVideoError& error) {
            EXPECT_EQ(error.kind(), CorvantaSdkVideoError::concatFailed);
            EXPECT_THAT(error.details(),
                        testing::ContainsRegex("no space: needs 14400000 MB, and [0-9]+ MB are free"));
        }
    }
    EXPECT_FALSE(std::filesystem::exists(run.folders.file("vast1.mp4")));
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(false));
    EXPECT_EQ(failureOf([&] { run.inspect({clip, clip}); }), "userNotAuthenticated");
}

} // namespace
} // namespace corvanta::test
