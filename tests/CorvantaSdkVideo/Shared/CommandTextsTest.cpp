#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandGenerator.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace corvanta::test {
namespace {

const FFMPEGCommandGenerator generator;

URL url(const char* text) { return *URL::parse(text); }

TEST(CommandTextsTest, Paths) {
    for (const auto& [path, formatted] : std::vector<std::pair<std::string_view, std::string_view>>{
             {"/a b.mp4", "\"/a b.mp4\""},
             {"/a%20b", "\"/a b\""},
             {"/100%", "\"/100%\""},
             {"/100% %20", "\"/100% %20\""},
             {"/%ff", "\"/%ff\""},
             {"/a\"b", "\"/a\"b\""},
             {"/a\\'b", "\"/a\\'b\""},
             {std::string_view("/a\0b", 4), std::string_view("\"/a\0b\"", 6)},
             {"", "\"\""}}) {
        EXPECT_EQ(ffmpegFormatted(path), formatted);
    }
}

TEST(CommandTextsTest, Angles) {
    for (const auto& [result, angles] : std::vector<std::pair<const char*, std::vector<std::int64_t>>>{
             {"270", {90, -270, 450}},
             {"180", {180, -180, 540, -540}},
             {"90", {-90, 270, -450}},
             {"0", {0, 45, 360, -360, 630, 720, 91, std::numeric_limits<std::int64_t>::min()}}}) {
        for (const std::int64_t angle : angles) {
            EXPECT_EQ(ffmpegFormatted(angle), result) << angle;
        }
    }
}

TEST(CommandTextsTest, Numbers) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    struct Case {
        double value;
        const char* time;
        const char* shortest;
    };
    for (const Case& expected : {
             Case{0, "0.0000", "0.0"},
             {0.1, "0.1000", "0.1"},
             {1.0 / 3, "0.3333", "0.3333333333333333"},
             {2.0 / 3, "0.6667", "0.6666666666666666"},
             {0.00015, "0.0002", "0.00015"},
             {0.00025, "0.0002", "0.00025"},
             {0.000251, "0.0003", "0.000251"},
             {99.99999, "100.0000", "99.99999"},
             {-1.00005, "-1.0000", "-1.00005"},
             {1e-7, "0.0000", "0.0000001"},
             {1e22, "10000000000000000000000.0000", "10000000000000000000000.0"},
             {123456789.12345, "123456789.1234", "123456789.12345"},
             {infinity, "0", "inf"},
             {std::nan(""), "0", "nan"},
         }) {
        EXPECT_EQ(formattedTime(expected.value), expected.time);
        EXPECT_EQ(shortestDecimal(expected.value), expected.shortest);
    }
    EXPECT_EQ(shortestDecimal(0.1F), "0.1");
    EXPECT_EQ(shortestDecimal(0.7F), "0.7");
    for (const double value : {std::numeric_limits<double>::max(), std::numeric_limits<double>::denorm_min(),
                               1.0 / 7, 1e-300, 2251799813685248.5}) {
        EXPECT_EQ(std::strtod(shortestDecimal(value).c_str(), nullptr), value);
        EXPECT_EQ(shortestDecimal(-value), '-' + shortestDecimal(value));
        EXPECT_EQ(shortestDecimal(value).find_first_of("eE"), std::string::npos);
    }
}

TEST(CommandTextsTest, Edit) {
    struct Case {
        const char* input;
        double start, end;
        std::int64_t angle;
        float volume;
        const char* output;
        const char* script;
    };
    for (const Case& expected : {
             Case{"file:///in%20put.mp4", 0, 3.5, 90, 1.0F, "/out.mp4",
                  "-y -i \"/in put.mp4\" -ss 0.0000 -to 3.5000 -c:v copy -c:a aac -metadata:s:v:0 rotate=270 "
                  "-af \"volume=1.0\" -preset superfast \"/out.mp4\""},
             {"/{trimStart}/{inputFile}", 2, 4, -90, 2.0F, "/{inputFile}{trimEnd}",
              "-y -i \"/2.0000/{inputFile}\" -ss 2.0000 -to 4.0000 -c:v copy -c:a aac -metadata:s:v:0 "
              "rotate=90 "
              "-af \"volume=2.0\" -preset superfast \"/{inputFile}{trimEnd}\""},
         }) {
        const FFMPEGCommand command =
            generator.generateEditCommand(url(expected.input), expected.start, expected.end, expected.angle,
                                          expected.volume, url(expected.output));
        EXPECT_EQ(command.script, expected.script);
        EXPECT_TRUE(command.inputFilesListFilePaths.empty());
    }
}

TEST(CommandTextsTest, ConcatAndItsListFile) {
    const TemporaryDirectory directory;
    const auto information = [](const char* path) {
        return CorvantaSdkVideoInformation(URL::fromFilePath(path), 0, 0, "", {}, {}, Orientation::portrait,
                                           {});
    };
    const std::string list = directory.file("list %20.txt");
    writeFile(list, std::string(1000, 'x'));
    const FFMPEGCommand command = generator.generateConcatCommandFor(
        {information("/a b.mp4"), information("/it's ü%20.mp4")}, URL::fromFilePath(list), "/out %20put.mp4");
    EXPECT_EQ(command.script, "-y -f concat -safe 0 -i " + list + " -c copy \"/out  put.mp4\"");
    EXPECT_EQ(command.inputFilesListFilePaths, std::vector{list});
    EXPECT_EQ(readFile(list), "file /a b.mp4\nfile /it's ü%20.mp4\n");
    generator.deleteInputFilesListFile(list);
    EXPECT_FALSE(std::filesystem::exists(list));
    generator.deleteInputFilesListFile(list);

    EXPECT_EQ(generator.generateConcatCommandFor({}, URL::fromFilePath("/no/such/list"), "{output}").script,
              "-y -f concat -safe 0 -i /no/such/list -c copy \"{output}\"");
}

TEST(CommandTextsTest, ThumbnailsAndSound) {
    using Size = std::optional<std::int64_t>;
    const auto thumbnail = [](const char* input, double millis, Size width, Size height) {
        return generator.generateThumbnailGenerationCommandFor(
            {CorvantaSdkVideoFile(url(input)), CorvantaSdkVideoFileDescriptor::custom("unused"), millis,
             width, height},
            url("/out%20put.jpg"));
    };
    EXPECT_EQ(thumbnail("file:///a b.mp4", 5000, 0, std::nullopt),
              "-i file:///a%20b.mp4 -ss 5.0 -vframes 1 -vf scale=0:-1 \"/out put.jpg\"");
    EXPECT_EQ(thumbnail("/a b.mp4", 0.5, std::nullopt, 200),
              "-i /a%20b.mp4 -ss 0.0005 -vframes 1 -vf scale=-1:200 \"/out put.jpg\"");
    EXPECT_EQ(thumbnail("/a.mp4", 0.00001, std::nullopt, std::nullopt),
              "-i /a.mp4 -ss 0.00000001 -vframes 1 -vf scale=-1:-1 \"/out put.jpg\"");

    const FFMPEGCommand trim =
        generator.generateThumbnailForTrim(url("file:///a%20b.mp4"), 2.5, 64, std::nullopt, "/t %41.jpg");
    EXPECT_EQ(trim.script, " -sseof -2.5 -i \"/a b.mp4\" -vframes 1 -vf scale=64:-1 \"/t A.jpg\"");

    EXPECT_EQ(generator.generateExtractAudioCommandFor(url("file:///a%20b.mp4"), url("/o.wav")),
              "-i \"/a b.mp4\" -vn -ac 1 -ar 16000 -ab 320k -f wav \"/o.wav\"");
    EXPECT_EQ(generator.generateExtractAudioCommandFor(url("/a"), url("/o"), 2, 48000, 96, "mp3"),
              "-i \"/a\" -vn -ac 2 -ar 48000 -ab 96k -f mp3 \"/o\"");
}

} // namespace
} // namespace corvanta::test
