#include <CorvantaSdkVideo/Commands/Builders/EncodingBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/MergeBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Encoding/EncodingForms.hpp>

#include "EngineBench.hpp"

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using namespace test;
using Encoding = CorvantaSdkVideoEncoding;
using Codec = Encoding::Codec;
using Quality = Encoding::Quality;
using Preset = Encoding::Preset;
using testing::HasSubstr;

const EncoderNames softwareAlone = {"mpeg4", "libx264", "libx265", "libaom-av1"};

MergeCommand commandOf(std::vector<CorvantaSdkVideoInformation> inputs) {
    return {.inputs = std::move(inputs), .outputPath = "out.mp4"};
}

CorvantaSdkVideoInformation coloured(const std::string& name, const std::string& pixelFormat = "yuv420p10le",
                                     const std::string& primaries = "bt2020",
                                     const std::string& transfer = "smpte2084") {
    auto information = plainInformation(URL::fromFilePath("/" + name));
    information.videos[0].pixelFormat = pixelFormat;
    information.videos[0].color = {"", primaries, transfer, ""};
    return information;
}

std::string refusalOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const CorvantaSdkVideoError& error) {
        return error.details();
    }
    return "";
}

TEST(Encoding, IsWrittenIntoTheCommand) {
    const auto plain = plainInformation(URL::fromFilePath("/a.mp4"));
    const MergeCommand command = commandOf({plain});
    const std::string usual = command.script({});
    struct Case {
        Encoding encoding;
        CorvantaSdkVideoInformation input;
        std::string encoder;
        std::vector<std::pair<std::string, std::string>> instead;
    };
    const std::string picture = "-c:v mpeg4 -pix_fmt yuv420p";
    const std::string rest = "-preset medium  ";
    const std::string graph = "[v_track0_video0]concat=n=1:v=1:a=0";
    const std::string tags =
        ",setparams=range=tv:color_primaries=bt2020:color_trc=smpte2084:colorspace=bt2020nc";
    for (const Case& expected : std::vector<Case>{
             {{}, plain, "", {}},
             {{.faststart = true}, plain, "", {{rest, "-preset medium -movflags +faststart  "}}},
             {{.quality = Quality::high},
              plain,
              "libx264",
              {{picture, "-c:v libx264 -pix_fmt yuv420p"}, {rest, "-crf 19 -preset medium -g 60  "}}},
             {{.codec = Codec::mpeg4, .crf = 4, .preset = Preset::slow},
              plain,
              "mpeg4",
              {{rest, "-q:v 4  "}}},
             {{.codec = Codec::av1, .preset = Preset::fast, .audioBitRate = 64'000},
              plain,
              "libaom-av1",
              {{picture, "-c:v libaom-av1 -pix_fmt yuv420p"},
               {rest, "-b:v 0 -crf 38 -cpu-used 6 -g 60 -row-mt 1 -b:a 64000  "}}},
             {{.codec = Codec::hevc, .audioSampleRate = 48'000, .audioChannels = 1},
              coloured("a.mp4"),
              "libx265",
              {{picture, "-c:v libx265 -pix_fmt yuv420p10le"},
               {graph, graph + tags},
               {"sample_rates=44100:channel_layouts=stereo", "sample_rates=48000:channel_layouts=mono"},
               {"-ar 44100 -ac 2", "-ar 48000 -ac 1"},
               {rest, "-crf 26 -preset medium -g 60 -tag:v hvc1 -x265-params log-level=error  "}}},
             {{.codec = Codec::hevc, .encoders = {"hevc_vaapi", "hevc_nvenc", "libx265"}},
              coloured("a.mp4", "yuv422p10le", "bt709", "bt709"),
              "libx265",
              {{picture, "-c:v libx265 -pix_fmt yuv420p10le"},
               {rest, "-crf 26 -preset medium -g 60 -tag:v hvc1 -x265-params log-level=error  "}}},
         }) {
        std::string script = usual;
        for (const auto& [common, chosen] : expected.instead) {
            ASSERT_THAT(script, HasSubstr(common));
            script.replace(script.find(common), common.size(), chosen);
        }
        const auto runs = encoderRuns(commandOf({expected.input}), expected.encoding, softwareAlone);
        ASSERT_EQ(runs.size(), 1U);
        EXPECT_EQ(runs[0].script, script);
        EXPECT_EQ(runs[0].encoder, expected.encoder);
    }
    // Hardware comes in the host's order, and nothing behind the first encoder in software.
    const Encoding ordered{.encoders = {"h264_qsv", "h264_vaapi", "h264_nvenc", "libx264", "h264_nvenc"}};
    const auto runs = encoderRuns(command, ordered, {"h264_vaapi", "h264_nvenc", "libx264"});
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_THAT(runs[0].script, testing::StartsWith("-y -vaapi_device /dev/dri/renderD"));
    EXPECT_THAT(runs[0].script, HasSubstr("concat=n=1:v=1:a=0,format=nv12,hwupload[v_track0]"));
    EXPECT_THAT(runs[1].script, HasSubstr(" -rc vbr -b:v 0 -cq 23 -preset p4 -g 60 "));
    EXPECT_EQ(runs[2].encoder, "libx264");
}

TEST(Encoding, TellsWhatIsWrongWithIt) {
    const auto wide = coloured("wide.mov");
    const auto plain = plainInformation(URL::fromFilePath("/plain.mp4"));
    for (const auto& [encoding, files, words] :
         std::vector<std::tuple<Encoding, std::vector<CorvantaSdkVideoInformation>, std::string>>{
             {{.quality = Quality::low, .crf = 20}, {plain}, "only one of them"},
             {{.crf = 52}, {plain}, "the crf of h264 goes from 0 to 51, not 52"},
             {{.codec = Codec::av1, .crf = 0}, {plain}, "the crf of av1 goes from 1 to 63, not 0"},
             {{.codec = Codec::hevc, .encoders = {"libx264"}}, {plain}, "libx265, not libx264"},
             {{.audioBitRate = 7'999}, {plain}, "bit rate goes from 8000"},
             {{.audioSampleRate = 44'101}, {plain}, "not 44101"},
             {{.audioChannels = 5}, {plain}, "1, 2, 6, 8, not 5"},
             {{.audioSampleRate = 96'000},
              {plain, wide},
              "can't have 96000 Hz: the inputs have 48000 at most"},
             {{.audioChannels = 6}, {plain}, "can't have 6 channels: the inputs have 2 at most"},
             {{.quality = Quality::best},
              {wide},
              "/wide.mov is of high dynamic range (PQ), which h264 can't hold"},
             {{.codec = Codec::mpeg4},
              {coloured("h", "yuv420p10le", "", "arib-std-b67")},
              "(HLG), which mpeg4"},
             {{.codec = Codec::h264},
              {coloured("w", "yuv420p", "bt2020", "bt709")},
              "of wide gamut (BT.2020)"},
             {{.codec = Codec::av1},
              {wide, plain},
              "/plain.mp4 is of standard range, that of /wide.mov of high"},
             {{.codec = Codec::av1}, {wide}, ""},
             {{.codec = Codec::h264}, {coloured("deep", "yuv420p10le", "bt709", "bt709")}, ""},
             {{.audioBitRate = 96'000, .faststart = true}, {wide, plain}, ""},
         }) {
        EXPECT_THAT(obstacleToEncoding(encoding, files).value_or(""), HasSubstr(words));
        EXPECT_EQ(obstacleToEncoding(encoding, files).has_value(), !words.empty());
        EXPECT_THAT(refusalOf([&] { encoderRuns(commandOf(files), encoding, softwareAlone); }),
                    HasSubstr(words));
    }
    EXPECT_EQ(refusalOf([&] {
                  encoderRuns(commandOf({plain}), {.codec = Codec::av1, .encoders = {"av1_nvenc"}},
                              softwareAlone);
              }),
              "the ffmpeg at hand can't encode av1: it has none of av1_nvenc");
}

TEST(Encoding, IsStoredUnderKeysThatOlderFilesLack) {
    EngineBench bench;
    const Encoding all{.codec = Codec::hevc,
                       .quality = Quality::best,
                       .crf = 20,
                       .preset = Preset::ultrafast,
                       .audioBitRate = 1,
                       .audioSampleRate = 2,
                       .audioChannels = 3,
                       .faststart = true,
                       .encoders = {"x"}};
    const std::string text = R"("encoding":{"codec":"hevc","quality":"best","crf":20,"preset":"ultrafast",)"
                             R"("audioBitRate":1,"audioSampleRate":2,"audioChannels":3,"faststart":true,)"
                             R"("encoders":["x"]}})";
    const auto place = CorvantaSdkVideoFileDescriptor::custom(bench.output());
    EncodingBuilder encode(CorvantaSdkVideoFile(bench.input("a.mp4")), place, bench.encode, bench.store);
    MergeBuilder merge({CorvantaSdkVideoFile(bench.input("a.mp4"))}, place, bench.merge, bench.store);
    for (const std::optional<Encoding>& encoding : {std::optional<Encoding>(), {all}, {Encoding{}}}) {
        encode.encoding = encoding;
        merge.encoding = encoding;
        encode.build();
        merge.build();
        EXPECT_EQ(bench.fetch(encode.id)->encodingData->encoding, encoding);
        EXPECT_EQ(bench.fetch(merge.id)->mergeData->encoding, encoding);
        EXPECT_THAT(*bench.store->getRequest(merge.id)->rawData,
                    testing::EndsWith(!encoding          ? R"("framesRate":"30"})"
                                      : *encoding == all ? text
                                                         : R"("encoding":{}})"));
        bench.store->deleteRequest(encode.id);
        bench.store->deleteRequest(merge.id);
    }
    // What is not understood must not be encoded in another way.
    const std::string rest = R"("videoTracks":[],"audioTracks":[],"framesRate":"30"})";
    for (const auto& [value, isRead] : {std::pair("null", true),
                                        {R"({"codec":"vvc"})", false},
                                        {R"({"crf":2.5})", false},
                                        {R"({"encoders":"libx264"})", false},
                                        {R"({"later":1})", true},
                                        {R"("h264")", false}}) {
        const auto row = bench.insertRow(Type::merge, Stored::idle, {},
                                         R"({"encoding":)" + std::string(value) + "," + rest);
        EXPECT_EQ(bench.fetch(row.id)->mergeData.has_value(), isRead) << value;
    }
}

TEST(Encoding, GoesOnWithTheNextEncoderUnlessItIsStopped) {
    const FakeProgram listing("CORVANTA_FFMPEG", "echo asked >>$here/log\n"
                                                 "echo ' ------'\n"
                                                 "for name in h264_nvenc h264_qsv libx264; do\n"
                                                 "    echo \" V....D $name  described\"\n"
                                                 "done\n");
    EngineBench bench;
    for (const auto& [code, fails, runs, failure, row] :
         std::vector<std::tuple<int, std::string, std::size_t, std::string, std::string>>{
             {1, "h264_", 3, "", "complete -"},
             {1, "264", 3, "mergeFailed", "error -"},
             {1, "nothing", 1, "", "complete -"},
             {255, "h264_", 1, "mergeFailed", "error -"},
             {0, "h264_", 1, "mergeFailed", "cancelled -"}}) {
        SCOPED_TRACE(std::to_string(code) + " " + fails);
        const UUID id = bench.insertRow(Type::merge).id;
        const RequestPointer request = bench.fetch(id);
        request->mergeData->encoding = {.encoders = {"h264_nvenc", "h264_qsv", "libx264"}};
        bench.executor->scripts.clear();
        bench.executor->onRun = [&, code = code, fails = fails](const std::string& script) {
            if (code == 0) {
                request->cancel();
            }
            if (script.find("-c:v " + fails) != std::string::npos || fails == "264") {
                throw PlatformError("COMPLETED", std::max(code, 1), "no device");
            }
        };
        std::string encoder;
        EXPECT_EQ(failureOf([&] { encoder = runBlocking(request->process()).encoder; }), failure);
        EXPECT_EQ(bench.executor->scripts.size(), runs);
        EXPECT_EQ(encoder, failure.empty() ? (runs == 1 ? "h264_nvenc" : "libx264") : "");
        EXPECT_EQ(bench.rowOf(id), row);
        const auto log = bench.log.take();
        EXPECT_EQ(testing::Value(log, testing::Contains(testing::EndsWith(
                                          "Encoding with h264_nvenc failed, going on with h264_qsv"))),
                  runs == 3);
    }
    EXPECT_EQ(readFile(listing.file("log")), "asked\n");
}

// By the encoders of the ffmpeg at hand, on files that are made for it.
TEST(Encoding, KeepsColoursAndDepthOfRealFiles) {
    EngineBench bench(std::make_shared<FFMPEGCommandExecutorImplementation>());
    const std::string wide = makeClip(
        {.seconds = 0.3,
         .container = "mov",
         .codecs =
             "-c:v libx265 -preset ultrafast -x265-params log-level=error -pix_fmt yuv420p10le -color_range "
             "tv -color_primaries bt2020 -color_trc arib-std-b67 -colorspace bt2020nc -c:a aac"});
    const std::string sound =
        makeClip({.seconds = 0.5, .pictures = {}, .container = "m4a", .codecs = "-c:a aac"});
    for (const auto& [codec, encoder] :
         {std::pair(Codec::hevc, "libx265"), {Codec::av1, "libaom-av1"}, {Codec::av1, "libsvtav1"}}) {
        SCOPED_TRACE(encoder);
        // The sound's part is black, which comes first and has no tags of its own.
        MergeBuilder builder(
            {CorvantaSdkVideoFile(URL::fromFilePath(sound)), CorvantaSdkVideoFile(URL::fromFilePath(wide))},
            CorvantaSdkVideoFileDescriptor::custom(bench.output()), bench.merge, bench.store);
        builder.encoding = {
            .codec = codec, .preset = Preset::ultrafast, .faststart = true, .encoders = {encoder}};
        const auto result = runBlocking(builder.build()->process());
        EXPECT_EQ(result.encoder, encoder);
        const auto written = probed(result.videoURL.path());
        ASSERT_EQ(written.videos.size(), 1U);
        EXPECT_EQ(written.videos[0].codec, name(codec));
        EXPECT_EQ(written.videos[0].pixelFormat, "yuv420p10le");
        EXPECT_EQ(written.videos[0].color,
                  (CorvantaSdkVideoPictureColor{"tv", "bt2020", "arib-std-b67", "bt2020nc"}));
        const std::string bytes = readFile(result.videoURL.path());
        EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
    }
}

} // namespace
} // namespace corvanta
