#include "support/DecodedMedia.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>

#include <gmock/gmock.h>

#include <array>

namespace corvanta {
namespace {

using namespace test;

// Merges real files with a script written from their probes, and gives the probe of the output.
CorvantaSdkVideoInformation mergedInto(const std::string& output,
                                       const std::vector<CorvantaSdkVideoInformation>& files,
                                       CorvantaSdkVideoFrameRate rate = CorvantaSdkVideoFrameRate::thirtyFps,
                                       std::optional<double> width = {}, std::optional<double> height = {}) {
    FFMPEGCommandExecutorImplementation executor;
    runBlocking(executor.executeFFMPEGCommand(
        FFMPEGMergeCommandGenerator().generateCommand(files, width, height, {}, {}, rate, output).script));
    return probed(output);
}

// One clip's place in the output.
struct Segment {
    std::string path;
    CorvantaSdkVideoInformation info;
    // Seconds.
    double start;
    double end;
};

double inSeconds(std::int64_t milliseconds) { return static_cast<double>(milliseconds) / 1000; }

// How long a stream plays. One that states no duration plays as long as its file, and a filler of the same
// length follows it.
template <typename Stream>
double playedSeconds(const Stream& stream, const CorvantaSdkVideoInformation& file) {
    return inSeconds(stream.durationMillis > 0 ? stream.durationMillis : file.durationMillis);
}

bool statesDurations(const CorvantaSdkVideoInformation& file) {
    const auto stated = [](const auto& stream) { return stream.durationMillis > 0; };
    return std::ranges::all_of(file.videos, stated) && std::ranges::all_of(file.audios, stated);
}

// Mean colours of a picture's nine fields, without their borders, which scaling blurs.
using Fields = std::array<Colour, 9>;

Fields fieldsOf(const Frame& frame, const Region& picture) {
    Fields fields;
    for (std::size_t field = 0; field < fields.size(); ++field) {
        const auto column = static_cast<double>(field % 3);
        const auto row = static_cast<double>(field / 3);
        const auto x = [&](double third) {
            return picture.left + (picture.right - picture.left) * third / 3;
        };
        const auto y = [&](double third) { return picture.top + (picture.bottom - picture.top) * third / 3; };
        fields[field] = frame.mean({x(column + 0.2), y(row + 0.2), x(column + 0.8), y(row + 0.8)});
    }
    return fields;
}

bool areNear(const Fields& left, const Fields& right) {
    return std::ranges::equal(left, right, [](const Colour& a, const Colour& b) { return isNear(a, b, 30); });
}

const Fields black = {};

// Where a picture of that shape is to stand in the output: as large as fits, in the middle.
Region fitted(const Frame& picture, const Frame& output) {
    const double aspect = static_cast<double>(picture.width) / picture.height;
    const double outputAspect = static_cast<double>(output.width) / output.height;
    const double width = std::min(1.0, aspect / outputAspect);
    const double height = std::min(1.0, outputAspect / aspect);
    return {(1 - width) / 2, (1 - height) / 2, (1 + width) / 2, (1 + height) / 2};
}

const Frame& frameShownAt(const std::vector<TimedFrame>& frames, double seconds) {
    const auto later = std::ranges::upper_bound(frames, seconds, {}, &TimedFrame::time);
    return later == frames.begin() ? frames.front().frame : std::prev(later)->frame;
}

// Checks the picture of one output track in each segment; gives when each picture appears.
std::vector<std::optional<double>> checkPictures(const std::string& output, std::size_t track,
                                                 const std::vector<Segment>& segments) {
    const std::vector<TimedFrame> frames = decodedVideo(output, static_cast<int>(track));
    std::vector<std::optional<double>> onsets;
    for (const Segment& segment : segments) {
        SCOPED_TRACE("picture of " + segment.path);
        double shown = 0;
        onsets.emplace_back();
        if (track < segment.info.videos.size()) {
            shown = playedSeconds(segment.info.videos[track], segment.info);
            const Frame source = frameAt(segment.path, 0, static_cast<int>(track));
            const Fields expected = fieldsOf(source, {});
            const Region place = fitted(source, frames.front().frame);
            const Frame& middle = frameShownAt(frames, segment.start + shown / 2);
            EXPECT_TRUE(areNear(fieldsOf(middle, place), expected));
            const auto first = std::ranges::find_if(frames, [&](const TimedFrame& frame) {
                return frame.time > segment.start - 0.3 && areNear(fieldsOf(frame.frame, place), expected);
            });
            onsets.back() = first != frames.end() ? std::optional(first->time) : std::nullopt;
        }
        if (segment.start + shown < segment.end - 0.1) {
            const Frame& rest = frameShownAt(frames, (segment.start + shown + segment.end) / 2);
            EXPECT_TRUE(areNear(fieldsOf(rest, {}), black));
        }
    }
    return onsets;
}

// The same for sound; each clip's track has a tone of its own.
std::vector<std::optional<double>> checkSounds(const std::string& output, std::size_t track,
                                               const std::vector<Segment>& segments,
                                               const std::vector<Clip>& clips) {
    const DecodedSound sound = decodedSound(output, static_cast<int>(track));
    std::vector<std::optional<double>> onsets;
    for (std::size_t position = 0; position < segments.size(); ++position) {
        const Segment& segment = segments[position];
        SCOPED_TRACE("sound of " + segment.path);
        double heard = 0;
        onsets.emplace_back();
        if (track < segment.info.audios.size()) {
            heard = playedSeconds(segment.info.audios[track], segment.info);
            const double frequency = clips[position].sounds[track].frequency;
            const double level = sound.amplitude(frequency, segment.start + heard / 2);
            EXPECT_GT(level, 1000);
            onsets.back() = sound.onset(frequency, std::max(0.0, segment.start - 0.3), level);
        }
        if (segment.start + heard < segment.end - 0.1) {
            EXPECT_LT(sound.peak((segment.start + heard + segment.end) / 2), 50);
        }
    }
    return onsets;
}

struct Case {
    std::string name;
    std::vector<Clip> clips;
    CorvantaSdkVideoFrameRate rate = CorvantaSdkVideoFrameRate::thirtyFps;
    std::optional<double> width = {};
    std::optional<double> height = {};
    bool convertsRates = false;
};

void check(const Case& merge) {
    SCOPED_TRACE(merge.name);
    const TemporaryDirectory directory;
    const std::string output = directory.file("out.mp4");
    std::vector<CorvantaSdkVideoInformation> files;
    std::vector<Segment> segments;
    double total = 0;
    std::size_t videoTracks = 0;
    std::size_t audioTracks = 0;
    for (const Clip& clip : merge.clips) {
        const std::string path = makeClip(clip);
        const CorvantaSdkVideoInformation info = probed(path);
        const double length = inSeconds(info.durationMillis) * (statesDurations(info) ? 1 : 2);
        files.push_back(info);
        segments.push_back({path, info, total, total + length});
        total += length;
        videoTracks = std::max(videoTracks, info.videos.size());
        audioTracks = std::max(audioTracks, info.audios.size());
    }
    const CorvantaSdkVideoInformation merged =
        mergedInto(output, files, merge.rate, merge.width, merge.height);

    // Probed durations are cut to milliseconds.
    const double frame = 1 / std::stod(std::string(merge.rate.rawValue()));
    const double tolerance = frame + 0.001;
    ASSERT_EQ(merged.videos.size(), videoTracks);
    ASSERT_EQ(merged.audios.size(), audioTracks);
    EXPECT_NEAR(inSeconds(merged.durationMillis), total, tolerance);
    for (const auto& track : merged.videos) {
        EXPECT_EQ(track.frameRate, std::string(merge.rate.rawValue()) + "/1");
        EXPECT_NEAR(inSeconds(track.durationMillis), total, tolerance);
    }
    for (const auto& track : merged.audios) {
        EXPECT_NEAR(inSeconds(track.durationMillis), total, tolerance);
    }
    std::vector<std::vector<std::optional<double>>> onsets;
    for (std::size_t track = 0; track < videoTracks; ++track) {
        onsets.push_back(checkPictures(output, track, segments));
    }
    for (std::size_t track = 0; track < audioTracks; ++track) {
        onsets.push_back(checkSounds(output, track, segments, merge.clips));
    }
    // Where ffmpeg converts rates, a picture may come one frame early or late.
    const double spread = std::max(0.04, merge.convertsRates ? frame + 0.015 : 0);
    for (std::size_t position = 0; position < segments.size(); ++position) {
        double earliest = segments[position].start;
        double latest = earliest;
        for (const auto& track : onsets) {
            earliest = std::min(earliest, track[position].value_or(earliest));
            latest = std::max(latest, track[position].value_or(latest));
        }
        EXPECT_LE(latest - earliest, spread) << "clip " << position;
    }
}

const std::string otherCodec = "-c:v mpeg4 -q:v 3 -bf 0 -g 30 -c:a aac";

// Clips that no frame and no sample of which can be taken for another's.
Clip bars(double frequency) {
    return {.pictures = {{.source = "smptebars"}}, .sounds = {{.frequency = frequency}}};
}
Clip blue(double frequency) {
    return {.pictures = {{.source = "color=c=blue"}}, .sounds = {{.frequency = frequency}}};
}
Clip shades(double frequency) {
    return {.pictures = {{.source = "rgbtestsrc"}}, .sounds = {{.frequency = frequency}}};
}

Clip with(Clip clip, int width, int height, const std::string& rate = "30") {
    clip.pictures.front().width = width;
    clip.pictures.front().height = height;
    clip.pictures.front().rate = rate;
    return clip;
}
Clip turned(Clip clip, int rotation) {
    clip.rotation = rotation;
    return clip;
}
Clip covered(Clip clip) {
    clip.cover = true;
    return clip;
}
Clip silent(Clip clip) {
    clip.sounds.clear();
    return clip;
}
Clip blind(Clip clip) {
    clip.pictures.clear();
    clip.container = "m4a";
    return clip;
}
Clip sounding(Clip clip, int sampleRate, const std::string& layout) {
    clip.sounds.front().sampleRate = sampleRate;
    clip.sounds.front().layout = layout;
    return clip;
}
Clip in(Clip clip, const std::string& container, const std::string& codecs = otherCodec) {
    clip.container = container;
    clip.codecs = codecs;
    return clip;
}

using Rate = CorvantaSdkVideoFrameRate;

std::vector<Case> cases() {
    const std::string bFrames = "-c:v libx264 -bf 3 -g 30 -pix_fmt yuv420p -c:a aac";
    const std::string dropsFrames =
        "-vf select=lt(mod(n\\,7)\\,4) -vsync vfr -c:v libx264 -bf 0 -g 30 -pix_fmt yuv420p -c:a aac";
    return {
        {"landscape with portrait",
         {with(bars(400), 320, 240), with(shades(700), 120, 320), with(blue(1000), 320, 140)}},
        {"covers", {covered(bars(400)), covered(blind(shades(700)))}},
        {"phone clips",
         {with(turned(bars(400), -90), 320, 240), with(turned(shades(700), 90), 320, 180),
          with(turned(bars(1000), 180), 320, 240)}},
        {"silent files", {silent(bars(0)), shades(700), silent(bars(0))}},
        {"sound alone", {blind(bars(400)), shades(700), blind(bars(1000))}},
        {"nothing but sound", {blind(bars(400)), blind(bars(700))}},
        {"nothing but pictures", {silent(bars(0)), silent(blue(0))}},
        {"two languages",
         {{.pictures = {{.source = "smptebars"}},
           .sounds = {{.frequency = 400, .language = "fra"}, {.frequency = 700, .language = "deu"}}},
          blue(1000)}},
        {"two pictures",
         {{.pictures = {{.source = "smptebars"}, {.source = "rgbtestsrc", .width = 64, .height = 96}}},
          blue(1000)}},
        {"mov and mp4", {bars(400), in(blue(700), "mov"), in(shades(1000), "mp4")}},
        {"mkv and webm, which state no durations",
         {in(bars(400), "mkv", bFrames), blue(700),
          in(shades(1000), "webm", "-c:v libvpx -deadline realtime -pix_fmt yuv420p -c:a libvorbis")}},
        {"odd sizes",
         {with(in(bars(400), "mp4"), 161, 121), with(in(blue(700), "mov"), 99, 75), shades(1000)},
         Rate::thirtyFps,
         320,
         240},
        {"7.1 and mono, 48 and 44.1 kHz",
         {sounding(bars(400), 48000, "7.1"), sounding(blue(700), 44100, "mono"), shades(1000)}},
        {"a variable rate", {in(bars(400), "mp4", dropsFrames), blue(700)}},
        {"a file listed twice", {bars(400), blue(700), bars(400)}},
        {"short streams",
         {{.pictures = {{.source = "smptebars", .seconds = 0.6}}, .sounds = {{.frequency = 400}}},
          {.pictures = {{.source = "color=c=blue"}}, .sounds = {{.frequency = 700, .seconds = 0.5}}},
          shades(1000)},
         Rate::thirtyFps,
         {},
         {},
         true},
    };
}

TEST(MergeOnRealFiles, KeepsEveryClipInItsPlace) {
    for (const Case& merge : cases()) {
        check(merge);
    }
}

TEST(MergeOnRealFiles, ConvertsRates) {
    const auto at = [](const Clip& clip, const std::string& rate) { return with(clip, 160, 120, rate); };
    for (const Rate rate :
         {Rate::twentyFourFps, Rate::twentyFiveFps, Rate::thirtyFps, Rate::fiftyFps, Rate::sixtyFps}) {
        const std::string name = "rates to " + std::string(rate.rawValue());
        for (const auto& clips :
             {std::vector{at(bars(400), "24"), at(blue(700), "25"), at(shades(1000), "30000/1001")},
              {at(bars(1300), "60"), at(blue(1600), "50"), at(shades(1900), "30")}}) {
            check({name, clips, rate, {}, {}, true});
        }
    }
}

// Takes minutes; the long form runs it.
TEST(DISABLED_LargeMerge, EndsWhole) {
    const Picture large{.source = "testsrc2", .width = 3840, .height = 2160};
    for (const auto& [clips, count] :
         {std::pair(std::vector<Clip>{{.seconds = 0.2}, {.seconds = 0.5, .sounds = {}}}, 200),
          {{{.seconds = 2, .pictures = {large}}}, 3}}) {
        SCOPED_TRACE(count);
        const TemporaryDirectory directory;
        std::vector<CorvantaSdkVideoInformation> files;
        std::int64_t total = 0;
        for (int number = 0; number < count; ++number) {
            // Under a name of its own, so that each is an input.
            const std::string path = directory.file(std::to_string(number) + ".mp4");
            std::filesystem::create_symlink(makeClip(clips[static_cast<std::size_t>(number) % clips.size()]),
                                            path);
            files.push_back(probed(path));
            total += files.back().durationMillis;
        }
        const auto merged = mergedInto(directory.file("out.mp4"), files);
        ASSERT_EQ(merged.videos.size(), 1U);
        ASSERT_EQ(merged.audios.size(), 1U);
        EXPECT_LE(std::abs(merged.videos[0].durationMillis - total), 34);
        // AAC fills its last frame up, and nothing cuts that off: each file's sound may run 22 ms longer.
        EXPECT_GE(merged.audios[0].durationMillis, total - 34);
        EXPECT_LE(merged.audios[0].durationMillis, total + count * 22);
    }
}

} // namespace
} // namespace corvanta
