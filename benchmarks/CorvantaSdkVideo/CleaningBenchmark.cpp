#include "Cost.hpp"
#include "support/MediaFixtures.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

// Cleaning a long video beside what ffmpeg takes for copying its picture and cleaning its sound in its own
// way. Both are mostly reading, decoding and writing.

namespace corvanta {
namespace {

const test::UserFolders& folders() {
    static const test::UserFolders user;
    return user;
}

void ffmpeg(std::string_view options, const std::string& output) {
    std::vector<std::string> words = test::wordsOf(options);
    words.insert(words.begin(), {"-v", "error", "-y"});
    words.push_back(output);
    test::runTool("ffmpeg", words);
}

// Ten minutes of 1080p at exactly 30 frames a second and 4 Mbit/s, with a noisy voice.
const std::string& tenMinuteClip() {
    static const std::string path = [] {
        const std::string picture = folders().file("picture.mp4");
        const std::string sound = folders().file("sound.m4a");
        const std::string clip = folders().file("clip.mp4");
        ffmpeg("-f lavfi -i testsrc2=s=1920x1080:r=30:d=10 -c:v libx264 -preset ultrafast -b:v 4M -g 30 "
               "-pix_fmt yuv420p",
               picture);
        ffmpeg("-f lavfi -i flite=text=said_again_and_again:voice=slt,aloop=-1:2e9,atrim=0:600 "
               "-f lavfi -i anoisesrc=c=pink:a=0.05:d=600:r=16000 -filter_complex "
               "[0][1]amix=normalize=0,aresample=48000 -c:a aac -ac 2",
               sound);
        ffmpeg("-stream_loop 59 -i " + picture + " -i " + sound + " -c copy", clip);
        return clip;
    }();
    return path;
}

void cleaningOfTenMinutes(benchmark::State& state) {
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    FFmpegKitConfig::setLogLevel("error");
    const std::string clip = tenMinuteClip();
    for (auto _ : state) {
        const Cost module = costOf([&clip] {
            runBlocking(CorvantaSdkVideo->engine()->clearNoiseForFile(
                CorvantaSdkVideoFile(URL::fromFilePath(clip)),
                CorvantaSdkVideoFileDescriptor::custom(folders().file("cleaned"))));
        });
        const Cost bare =
            costOf([&clip] { ffmpeg("-i " + clip + " -c:v copy -af afftdn", folders().file("afftdn.mp4")); });
        state.counters["module_s"] = module.wall;
        state.counters["bare_s"] = bare.wall;
        state.counters["module_processor_s"] = module.processor;
        state.counters["bare_processor_s"] = bare.processor;
    }
}
BENCHMARK(cleaningOfTenMinutes)->Iterations(1)->Repetitions(3)->UseRealTime()->Unit(benchmark::kSecond);

} // namespace
} // namespace corvanta
