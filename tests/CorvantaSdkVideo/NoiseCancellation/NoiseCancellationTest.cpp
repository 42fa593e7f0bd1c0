#include "CorvantaSdkVideo/NoiseCancellation/CleaningRun.hpp"
#include "support/DecodedMedia.hpp"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>

namespace corvanta::test {
namespace {

constexpr int rate = 16000;
const std::string h264 = "-c:v libx264 -preset ultrafast -bf 0 -g 30 -pix_fmt yuv420p -c:a aac";

Sound sound(std::string layout, int sampleRate, std::optional<double> seconds = {}) {
    return {.sampleRate = sampleRate, .layout = std::move(layout), .seconds = seconds};
}

double pictureEnd(const std::string& path) {
    return std::ranges::max(ffprobeNumbers(path, "v:0", "packet=pts_time"));
}

std::string packets(const std::string& path) {
    return runTool("ffmpeg", {"-v", "error", "-i", path, "-map", "0:v:0", "-c", "copy", "-f", "md5", "-"});
}

// An older file is replaced. The sound is mono AAC of 16 kHz and as long as it was, the picture runs at 30
// frames a second, as long, as large and turned as it was.
void expectCleaned(const CleaningRun& run, const Clip& clip) {
    const Picture& picture = clip.pictures.front();
    const std::string input = makeClip(clip);
    SCOPED_TRACE(input);
    const std::string output = run.clean(input, run.file("a clean one"));
    EXPECT_EQ(output, run.file("a clean one." + clip.container));
    EXPECT_THAT(run.leftOver(), testing::IsEmpty());

    const auto before = probed(input);
    const auto after = probed(output);
    EXPECT_THAT(after.format, testing::HasSubstr("mp4"));
    ASSERT_EQ(after.videos.size(), 1U);
    EXPECT_EQ(after.videos[0].frameRate, "30/1");
    EXPECT_EQ(after.rotation(), before.rotation());
    EXPECT_EQ(after.videos[0].width, before.videos[0].width);
    EXPECT_EQ(after.videos[0].height, before.videos[0].height);
    EXPECT_NEAR(pictureEnd(output), pictureEnd(input), 0.067);
    if (picture.rate == "30" && before.videoCodec() == "h264") {
        EXPECT_EQ(packets(output), packets(input));
    }
    ASSERT_EQ(after.audios.size(), 1U);
    EXPECT_EQ(after.audios[0].codec, "aac");
    EXPECT_EQ(after.audios[0].sampleRate, 16000);
    EXPECT_EQ(after.audios[0].channels, 1);
    // Frames of 10 ms, and what the two AAC frames at the ends add.
    EXPECT_NEAR(decodedSound(output).end(), decodedSound(input).end(), 0.01 + 0.064);
}

TEST(NoiseCancellationTest, KeepsTheShapeOfAClip) {
    const CleaningRun run;
    for (const Clip& clip :
         {Clip{.rotation = -90}, Clip{.sounds = {sound("5.1", 44100)}, .container = "mov", .rotation = 90},
          Clip{.pictures = {{.rate = "25"}}, .sounds = {sound("mono", 8000)}, .rotation = 180},
          Clip{.sounds = {sound("stereo", 48000)}, .container = "webm", .codecs = "-c:v libvpx -c:a libopus"},
          Clip{.sounds = {sound("5.1", 11025)}, .container = "mkv"},
          Clip{.seconds = 0.05, .sounds = {sound("stereo", 96000)}},
          Clip{.seconds = 1, .sounds = {sound("mono", 22050, 2)}},
          Clip{.seconds = 2, .sounds = {sound("mono", 32000, 0.5)}}}) {
        expectCleaned(run, clip);
    }
}

// Mono samples on the file's time line, from its zero.
std::vector<float> samplesOf(const std::string& path) {
    const std::string bytes =
        runTool("ffmpeg", {"-v", "error", "-copyts", "-i", path, "-map", "0:a:0", "-af",
                           "aresample=" + std::to_string(rate) + ":async=1:min_hard_comp=0.005:first_pts=0",
                           "-ac", "1", "-f", "f32le", "-"});
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

// By how many seconds `late` comes after `early` where they are most alike, within 0.1 s around `expected`.
double lag(const std::vector<float>& early, const std::vector<float>& late, double expected) {
    const auto product = [&](int shift) {
        double sum = 0;
        for (int at = std::max(0, -shift); at < std::min(std::ssize(early), std::ssize(late) - shift); ++at) {
            sum += early[static_cast<std::size_t>(at)] * late[static_cast<std::size_t>(at + shift)];
        }
        return sum;
    };
    const auto middle = static_cast<int>(std::lround(expected * rate));
    std::pair<double, int> best{0, 0};
    for (int shift = middle - rate / 10; shift <= middle + rate / 10; shift += 16) {
        best = std::max(best, {product(shift), shift});
    }
    return static_cast<double>(best.second) / rate;
}

// When the picture turns white.
double flash(const std::string& path) {
    const std::vector<double> times = ffprobeNumbers(path, "v:0", "frame=best_effort_timestamp_time");
    const std::string greys =
        runTool("ffmpeg", {"-v", "error", "-i", path, "-map", "0:v:0", "-vsync", "passthrough", "-vf",
                           "scale=1:1", "-pix_fmt", "gray", "-f", "rawvideo", "-"});
    const auto white = std::ranges::find_if(greys, [](unsigned char grey) { return grey > 128; });
    return times.at(static_cast<std::size_t>(white - greys.begin()));
}

TEST(NoiseCancellationTest, SoundAndPictureStayTogether) {
    // What the model is late by.
    constexpr double delay = 0.031;
    const CleaningRun run;
    struct Case {
        std::string container, codecs;
        // Seconds; below zero the picture comes late.
        double soundIsLate = 0;
        std::string pictureRate = "30";
    };
    const std::string hole = " -bsf:a noise=drop=gt(pts*tb\\,0.2)*lt(pts*tb\\,0.8):amount=0";
    const std::string many = " -bsf:a noise=drop=lt(pts*tb\\,0.9)*eq(mod(n\\,4)\\,1):amount=0";
    const std::string opus = "-c:v libvpx -c:a libopus";
    for (const auto& [container, codecs, soundIsLate, pictureRate] :
         std::vector<Case>{{"mov", "-c:v libx264 -preset veryfast -g 30 -c:a pcm_s16le -ac 6", 0.4},
                           {"mp4", h264 + " -ar 8000", 0.25},
                           {"mkv", h264 + " -ar 8000 -ac 1", -0.3},
                           {"webm", opus},
                           {"ts", "-c:v mpeg2video -c:a mp2 -ar 44100", 0.2},
                           {"ts", h264},
                           {"flv", h264 + " -ar 44100"},
                           {"mp4", h264, 0, "1"},
                           {"mp4", h264, 0, "15"},
                           {"mov", h264, -0.3, "60"},
                           {"mp4", h264, 0, "120"},
                           {"avi", "-c:v mpeg4 -bf 2 -c:a libmp3lame -ar 44100"},
                           {"mp4", h264 + hole},
                           {"mkv", "-c:v libx264 -preset veryfast -c:a libmp3lame" + hole},
                           {"webm", opus + hole, 0, "25"},
                           {"mkv", h264 + many, 0.1},
                           {"mkv", h264 + " -bsf:a setts=ts=TS-gt(TS\\,500)*200"}}) {
        SCOPED_TRACE(container + " " + codecs + " " + pictureRate);
        const std::string input = run.file("flash." + container);
        std::vector<std::string> arguments{"-v",
                                           "error",
                                           "-y",
                                           "-itsoffset",
                                           std::to_string(std::max(0.0, -soundIsLate)),
                                           "-f",
                                           "lavfi",
                                           "-i",
                                           "color=black:s=64x64:r=" + pictureRate +
                                               ":d=3,drawbox=c=white:t=fill:enable='gte(t,1)'",
                                           "-itsoffset",
                                           std::to_string(std::max(0.0, soundIsLate)),
                                           "-f",
                                           "lavfi",
                                           "-i",
                                           "flite=text='A word to be heard':voice=slt,adelay=1000"};
        for (const std::string& word : wordsOf(codecs)) {
            arguments.push_back(word);
        }
        arguments.push_back(input);
        runTool("ffmpeg", arguments);
        const std::string output = run.clean(input, run.file("out"));
        const std::vector<double> shown = ffprobeNumbers(output, "v:0", "frame=pts_time");
        EXPECT_TRUE(std::ranges::is_sorted(shown, std::less_equal<>()));
        const double pictureMoved = flash(output) - flash(input);
        const double soundMoved = lag(samplesOf(input), samplesOf(output), pictureMoved + delay);
        EXPECT_NEAR(soundMoved, pictureMoved + delay, 0.010);
    }
}

double decibels(const std::vector<float>& samples, double from, double to) {
    double sum = 1e-12;
    for (auto at = static_cast<std::size_t>(from * rate); at < static_cast<std::size_t>(to * rate); ++at) {
        sum += std::pow(samples.at(at), 2);
    }
    return 10 * std::log10(sum / ((to - from) * rate));
}

TEST(NoiseCancellationTest, TagsStay) {
    const CleaningRun run;
    const std::string input = run.file("tagged.mkv");
    runTool("ffmpeg", {"-v",
                       "error",
                       "-f",
                       "lavfi",
                       "-i",
                       "testsrc2=s=64x64:r=30:d=1",
                       "-f",
                       "lavfi",
                       "-i",
                       "sine=d=1",
                       "-f",
                       "lavfi",
                       "-i",
                       "sine=d=1:f=900",
                       "-map",
                       "0",
                       "-map",
                       "1",
                       "-map",
                       "2",
                       "-c:v",
                       "libx265",
                       "-preset",
                       "ultrafast",
                       "-x265-params",
                       "log-level=none",
                       "-metadata",
                       "creation_time=2020-02-03T04:05:06Z",
                       "-metadata",
                       "title=A day",
                       "-metadata:s:a:0",
                       "language=eng",
                       "-metadata:s:a:1",
                       "language=fra",
                       "-ac:a:1",
                       "2",
                       "-disposition:a:0",
                       "0",
                       "-disposition:a:1",
                       "0",
                       input});
    const std::string output = run.clean(input, run.file("out"));
    EXPECT_EQ(
        runTool("ffprobe", {"-v", "error", "-show_entries",
                            "stream=codec_tag_string:stream_tags=language:format_tags=title,creation_time",
                            "-of", "compact=p=0:nk=1", output}),
        "hvc1|und\nmp4a|fra\n2020-02-03T04:05:06.000000Z|A day\n");
}

TEST(NoiseCancellationTest, NoiseGoesAndSpeechStays) {
    const CleaningRun run;
    const std::string input = run.file("noisy.mp4");
    runTool("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=s=64x64:r=30:d=5", "-f", "lavfi", "-i",
                       "anoisesrc=c=pink:a=0.1:d=5:r=16000", "-f", "lavfi", "-i",
                       "flite=text='Here are a few words, that should be kept as they are':voice=slt",
                       "-filter_complex", "[2]adelay=2000[s];[1][s]amix=duration=first:normalize=0", input});
    const std::string output = run.clean(input, run.file("quiet"));
    const auto before = samplesOf(input);
    const auto after = samplesOf(output);
    EXPECT_LT(decibels(after, 1, 2), decibels(before, 1, 2) - 10);
    EXPECT_NEAR(decibels(after, 2.5, 4), decibels(before, 2.5, 4), 3);

    // Of what goes, so much as is asked for.
    const auto level = [](const std::vector<float>& samples) {
        return std::pow(10, decibels(samples, 1, 2) / 20);
    };
    for (const double strength : {0.0, 0.5, 1.0}) {
        const auto some = samplesOf(run.clean(input, run.file("some"), {strength, true}));
        const double expected = level(before) + strength * (level(after) - level(before));
        EXPECT_NEAR(level(some), expected, level(before) * 0.1) << strength;
        EXPECT_NEAR(lag(before, some, 0), 0, 0.001) << strength;
    }
    EXPECT_NEAR(lag(before, samplesOf(run.clean(input, run.file("late"), {.strength = 0})), 0.031), 0.031,
                0.001);
}

} // namespace
} // namespace corvanta::test
