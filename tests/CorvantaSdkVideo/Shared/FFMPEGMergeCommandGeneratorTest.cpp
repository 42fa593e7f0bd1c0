#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>

#include <gmock/gmock.h>

#include <regex>

namespace corvanta {
namespace {

using testing::HasSubstr;

CorvantaSdkVideoTrackInformation video(std::int64_t index, std::int64_t width, std::int64_t height,
                                       std::int64_t durationMillis, std::int64_t rotation = 0) {
    return {index, width, height, "h264", "avc1", "yuv420p", 0, "30/1", rotation, durationMillis};
}

CorvantaSdkVideoAudioTrackInformation audio(std::int64_t index, std::int64_t durationMillis) {
    CorvantaSdkVideoAudioTrackInformation track;
    track.index = index;
    track.durationMillis = durationMillis;
    return track;
}

CorvantaSdkVideoInformation file(const std::string& path, std::int64_t durationMillis,
                                 std::vector<CorvantaSdkVideoTrackInformation> videos,
                                 std::vector<CorvantaSdkVideoAudioTrackInformation> audios) {
    return {URL::fromFilePath(path), 0, durationMillis, "mp4", std::move(videos), std::move(audios), {}, {}};
}

struct Request {
    std::vector<CorvantaSdkVideoInformation> files = {};
    std::optional<double> width = {};
    std::optional<double> height = {};
    std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks = {};
    std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks = {};
    CorvantaSdkVideoFrameRate rate = CorvantaSdkVideoFrameRate::thirtyFps;
    std::string output = "/tmp/out.mp4";
};

std::string scriptFor(const Request& request) {
    const FFMPEGCommand command = FFMPEGMergeCommandGenerator().generateCommand(
        request.files, request.width, request.height, request.videoTracks, request.audioTracks, request.rate,
        request.output);
    EXPECT_TRUE(command.inputFilesListFilePaths.empty());
    return command.script;
}

// Writes out what stands often in a script, all of which the first golden case has in full: the labels of the
// second video of track 0, "[v0-1]", of the whole track, "[v0]", and of a filler of its sound, "[rest0-1]";
// FIT(width,height), SOUND, VIDEO(rate), AUDIO.
std::string written(std::string text) {
    for (const auto& [pattern, meant] : std::vector<std::pair<std::string, std::string>>{
             {R"(\[v(\d)-(\d)\])", "[v_track$1_video$2]"},
             {R"(\[a(\d)-(\d)\])", "[a_track$1_audio$2]"},
             {R"(\[rest(\d)-(\d)\])", "[a_track$1_audio$2_rest]"},
             {R"(\[([va])(\d)\])", "[$1_track$2]"},
             {R"(FIT\((\d+),(\d+)\))", "scale='if(gt(iw/ih,$1/$2),$1,-2)':'if(gt(iw/ih,$1/$2),-2,$2)',"
                                       "pad=$1:$2:(ow-iw)/2:(oh-ih)/2,setsar=1"},
             {"SOUND", "aformat=sample_fmts=fltp:sample_rates=44100:channel_layouts=stereo"},
             {R"(VIDEO\((\d+)\))", "-c:v mpeg4 -pix_fmt yuv420p -r $1"},
             {"AUDIO", "-c:a aac -ar 44100 -ac 2"},
         }) {
        text = std::regex_replace(text, std::regex(pattern), meant);
    }
    return text;
}

struct GoldenCase {
    std::string name;
    Request request;
    std::string script;
};

std::vector<GoldenCase> goldenCases() {
    const auto a = file("/v/a.mp4", 5000, {video(0, 320, 240, 5000)}, {audio(1, 5000)});
    const auto mute = file("/v/mute.mp4", 700, {video(0, 320, 240, 700)}, {});
    const auto blind = file("/v/blind.mp4", 900, {}, {audio(0, 900)});
    const auto rich = file("/v/rich.mp4", 4000, {video(0, 320, 240, 4000), video(3, 64, 36, 4000)},
                           {audio(1, 4000), audio(5, 4000)});
    auto covered = file("/v/covered.mp4", 4000, {video(1, 320, 240, 4000), video(3, 64, 36, 4000)}, {});
    covered.covers = {0, 2, 4};
    return {
        {"covers, which ffmpeg counts",
         {.files = {covered}},
         R"(-y -i "file:///v/covered.mp4" -filter_complex "[0:v:1]FIT(320,240)[v0-0];[v0-0]concat=n=1:v=1:a=0[v0];)"
         "[0:v:3]FIT(64,36)[v1-0];[v1-0]concat=n=1:v=1:a=0[v1]"
         R"(" -map "[v0]" VIDEO(30) -map "[v1]" VIDEO(30) -preset medium  "/tmp/out.mp4")"},
        {"a short sound and a file without any",
         {.files = {file("/v/a.mp4", 5000, {video(0, 1920, 1080, 5000)}, {audio(1, 4900)}),
                    file("/v/b.mp4", 3000, {video(0, 1280, 720, 3000)}, {})}},
         R"(-y -i "file:///v/a.mp4" -i "file:///v/b.mp4" -filter_complex ")"
         "[0:v:0]scale='if(gt(iw/ih,1920/1080),1920,-2)':'if(gt(iw/ih,1920/1080),-2,1080)',"
         "pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1[v_track0_video0];"
         "[1:v:0]scale='if(gt(iw/ih,1920/1080),1920,-2)':'if(gt(iw/ih,1920/1080),-2,1080)',"
         "pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1[v_track0_video1];"
         "[v_track0_video0][v_track0_video1]concat=n=2:v=1:a=0[v_track0];"
         "[0:a:0]aformat=sample_fmts=fltp:sample_rates=44100:channel_layouts=stereo[a_track0_audio0];"
         "aevalsrc=0:s=44100:d=100ms[a_track0_audio1_rest];"
         "[a_track0_audio1_rest]aformat=sample_fmts=fltp:sample_rates=44100:channel_layouts=stereo"
         "[a_track0_audio1];"
         "aevalsrc=0:s=44100:d=3000ms[a_track0_audio2_rest];"
         "[a_track0_audio2_rest]aformat=sample_fmts=fltp:sample_rates=44100:channel_layouts=stereo"
         "[a_track0_audio2];"
         "[a_track0_audio0][a_track0_audio1][a_track0_audio2]concat=n=3:v=0:a=1[a_track0]"
         R"(" -map "[v_track0]" -c:v mpeg4 -pix_fmt yuv420p -r 30 )"
         R"(-map "[a_track0]" -c:a aac -ar 44100 -ac 2 -preset medium  "/tmp/out.mp4")"},
        {"nothing at all", {}, ""},
        {"selections of files that are not there",
         {.files = {a}, .videoTracks = {{{{1, 0}, {-1, 0}}, {}, {}}}, .audioTracks = {{{{INT64_MAX, 1}}}}},
         ""},
        {"only sound, the rate unused",
         {.files = {blind}, .rate = CorvantaSdkVideoFrameRate::unknown},
         R"(-y -i "file:///v/blind.mp4" -filter_complex "[0:a:0]SOUND[a0-0];[a0-0]concat=n=1:v=0:a=1[a0]")"
         R"( -map "[a0]" AUDIO -preset medium  "/tmp/out.mp4")"},
        {"only pictures, a black filler, an unknown rate",
         {.files = {mute, file("/v/short.mp4", 500, {video(0, 64, 36, 499)}, {})},
          .rate = CorvantaSdkVideoFrameRate::unknown},
         R"(-y -i "file:///v/mute.mp4" -i "file:///v/short.mp4" -filter_complex ")"
         "[0:v:0]FIT(320,240)[v0-0];[1:v:0]FIT(320,240)[v0-1];color=c=black:s=320x240:d=1ms[v0-2];"
         R"([v0-0][v0-1][v0-2]concat=n=3:v=1:a=0[v0]" -map "[v0]" VIDEO(0) -preset medium  "/tmp/out.mp4")"},
        {"a selection: another order, a wrong stream, a wrong file, a track left empty, an own width",
         {.files = {a, rich},
          .width = 128,
          .height = 36.9,
          .videoTracks = {{{{9, 0}}, {}, {}}, {{{1, 3}, {2, 0}, {0, 7}, {1, 0}}, 64, {}}},
          .audioTracks = {{{{1, 5}, {0, 0}}}, {}},
          .rate = CorvantaSdkVideoFrameRate::sixtyFps},
         R"(-y -i "file:///v/a.mp4" -i "file:///v/rich.mp4" -filter_complex ")"
         "[1:v:1]FIT(64,36)[v0-0];color=c=black:s=64x36:d=5000ms[v0-1];[1:v:0]FIT(64,36)[v0-2];"
         "[v0-0][v0-1][v0-2]concat=n=3:v=1:a=0[v0];"
         "[1:a:1]SOUND[a0-0];aevalsrc=0:s=44100:d=5000ms[rest0-1];[rest0-1]SOUND[a0-1];"
         R"([a0-0][a0-1]concat=n=2:v=0:a=1[a0]" -map "[v0]" VIDEO(60) -map "[a0]" AUDIO )"
         R"(-preset medium  "/tmp/out.mp4")"},
        {"two tracks of a kind, a file listed twice, blanks in the names",
         {.files = {file("/v/my clip.mp4", 500, {video(0, 320, 240, 500), video(1, 64, 36, 500)}, {}), mute,
                    file("/v/my clip.mp4", 500, {video(0, 320, 240, 500), video(1, 64, 36, 500)}, {})},
          .output = "/tmp/my film.mp4"},
         R"(-y -i "file:///v/my clip.mp4" -i "file:///v/mute.mp4" -i "file:///v/my clip.mp4" )"
         R"(-filter_complex "[0:v:0]FIT(320,240)[v0-0];[1:v:0]FIT(320,240)[v0-1];[0:v:0]FIT(320,240)[v0-2];)"
         "[v0-0][v0-1][v0-2]concat=n=3:v=1:a=0[v0];"
         "[0:v:1]FIT(64,36)[v1-0];color=c=black:s=64x36:d=700ms[v1-1];[0:v:1]FIT(64,36)[v1-2];"
         "[v1-0][v1-1][v1-2]concat=n=3:v=1:a=0[v1]"
         R"(" -map "[v0]" VIDEO(30) -map "[v1]" VIDEO(30) -preset medium  "/tmp/my film.mp4")"},
        {"streams longer than their file, streams that state no duration, a file of no length",
         {.files = {file("/v/long.mp4", 900, {}, {audio(1, 1000)}),
                    file("/v/m.mkv", 10000, {}, {audio(1, 0)}), file("/v/empty.mp4", 0, {}, {})}},
         R"(-y -i "file:///v/long.mp4" -i "file:///v/m.mkv" -i "file:///v/empty.mp4" -filter_complex ")"
         "[0:a:0]SOUND[a0-0];[1:a:0]SOUND[a0-1];aevalsrc=0:s=44100:d=10000ms[rest0-2];[rest0-2]SOUND[a0-2];"
         "aevalsrc=0:s=44100:d=0ms[rest0-3];[rest0-3]SOUND[a0-3];"
         R"([a0-0][a0-1][a0-2][a0-3]concat=n=4:v=0:a=1[a0]" -map "[a0]" AUDIO -preset medium  "/tmp/out.mp4")"},
    };
}

TEST(FFMPEGMergeCommandGenerator, WritesTheScript) {
    for (const GoldenCase& golden : goldenCases()) {
        EXPECT_EQ(scriptFor(golden.request), written(golden.script)) << golden.name;
    }
}

TEST(FFMPEGMergeCommandGenerator, ComputesTheSizeOfATrack) {
    const auto wide = video(0, 1920, 1080, 1000);
    const auto tall = video(0, 600, 1200, 1000);
    struct Case {
        std::string name;
        std::vector<CorvantaSdkVideoTrackInformation> videos;
        std::optional<double> width, height;
        std::optional<std::int64_t> ownWidth, ownHeight;
        std::string size;
    };
    const std::vector<Case> cases = {
        {"maxima of different files", {wide, tall}, {}, {}, {}, {}, "1920:1200"},
        {"a width alone", {wide}, 1000, {}, {}, {}, "1000:562"},
        {"a height alone", {wide, tall}, {}, 601.99, {}, {}, "961:601"},
        {"an own width goes first", {wide}, 640, {}, 1000, {}, "1000:562"},
        {"an own width beside an overall height", {wide}, {}, 480, 1000, {}, "1000:480"},
        {"an own height beside an overall width", {wide}, 640, {}, {}, 333, "640:333"},
        {"turned by 90", {video(0, 1920, 1080, 1000, 90)}, {}, {}, {}, {}, "1080:1920"},
        {"turned by -90", {video(0, 1920, 1080, 1000, -90)}, {}, {}, {}, {}, "1920:1080"},
        {"a negative limit", {wide}, -100, {}, {}, {}, "-100:-56"},
    };
    for (const Case& size : cases) {
        Request request{.width = size.width, .height = size.height};
        CorvantaSdkVideoMergeVideoTrack selection{{}, size.ownWidth, size.ownHeight};
        for (const auto& track : size.videos) {
            selection.tracks.push_back({std::ssize(request.files), 0});
            request.files.push_back(file("/v/" + std::to_string(request.files.size()), 1000, {track}, {}));
        }
        request.videoTracks = {selection};
        EXPECT_THAT(scriptFor(request), HasSubstr(",pad=" + size.size + ":(ow-iw)/2")) << size.name;
        if (!size.ownWidth && !size.ownHeight) {
            request.videoTracks = {};
            EXPECT_THAT(scriptFor(request), HasSubstr(",pad=" + size.size + ":(ow-iw)/2")) << size.name;
        }
    }
    const Request noStream{
        .files = {file("/v/a.mp4", 10, {}, {})}, .width = 640, .videoTracks = {{{{0, 0}}, {}, {}}}};
    EXPECT_THAT(scriptFor(noStream), HasSubstr("color=c=black:s=0x0:d=10ms"));
}

TEST(FFMPEGMergeCommandGeneratorDeathTest, EndsTheProcessOnNumbersThatDoNotFit) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto clip = file("/v/a.mp4", 1000, {video(0, 1920, 1080, 1000)}, {});
    const auto flat = file("/v/a.mp4", 1000, {video(0, 0, 0, 1000)}, {});
    const auto endless = file("/v/a.mp4", INT64_MAX, {video(0, 2, 2, -1)}, {});
    const std::vector<std::pair<Request, std::string>> cases = {
        {{.files = {}, .width = infinity}, "either infinite or NaN"},
        {{.files = {clip}, .height = std::nan("")}, "either infinite or NaN"},
        {{.files = {clip}, .width = 0x1p63}, "greater than Int64.max"},
        {{.files = {clip}, .height = -0x1.0000000000001p63}, "less than Int64.min"},
        {{.files = {clip}, .width = 0x1p62}, "overflow in a multiplication"},
        {{.files = {clip}, .videoTracks = {{{{0, 0}}, {}, INT64_MIN}}}, "overflow in a multiplication"},
        {{.files = {flat}, .width = 640}, "Division by zero"},
        {{.files = {endless}}, "overflow in a subtraction"},
    };
    for (const auto& [request, message] : cases) {
        EXPECT_DEATH(scriptFor(request), message);
    }
    EXPECT_THAT(scriptFor({.files = {clip}, .width = -0x1p63, .height = 1}),
                HasSubstr("pad=-9223372036854775808:1:"));
}

} // namespace
} // namespace corvanta
