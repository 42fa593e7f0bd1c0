#include "CorvantaSdkVideo/NoiseCancellation/CleaningRun.hpp"

#include "support/DecodedMedia.hpp"

#include <gmock/gmock.h>

namespace corvanta::test {

namespace {

double pictureEnd(const std::string& path) {
    const auto times = wordsOf(runTool("ffprobe", {"-v", "error", "-select_streams", "v:0", "-show_entries",
                                                   "packet=pts_time", "-of", "csv=p=0", path}));
    double last = 0;
    for (const std::string& time : times) {
        last = std::max(last, std::stod(time));
    }
    return last;
}

std::string packets(const std::string& path) {
    return runTool("ffmpeg", {"-v", "error", "-i", path, "-map", "0:v:0", "-c", "copy", "-f", "md5", "-"});
}

} // namespace

void PrintTo(const Clip& clip, std::ostream* out) {
    const Sound& sound = clip.sounds.front();
    *out << clip.seconds << " s of " << clip.container << ", " << clip.pictures.front().rate << " frames, "
         << sound.layout << " of " << sound.seconds.value_or(clip.seconds) << " s at " << sound.sampleRate
         << " Hz, turn " << clip.rotation;
}

void expectCleaned(const CleaningRun& run, const Clip& clip) {
    const Picture& picture = clip.pictures.front();
    const std::string input = makeClip(clip);
    SCOPED_TRACE(testing::PrintToString(clip));
    const std::string output = run.clean(input, run.file("cleaned"));
    EXPECT_EQ(output, run.file("cleaned." + clip.container));
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
    std::filesystem::remove(output);
}

} // namespace corvanta::test
