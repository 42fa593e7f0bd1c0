#include "BarePrograms.hpp"
#include "support/MediaFixtures.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditor.hpp>

#include <benchmark/benchmark.h>

#include <string>

// An exact cut beside what ffmpeg takes for the same range when it copies the picture, and when it encodes it
// anew in its own default way.

namespace corvanta {
namespace {

const test::UserFolders& folders() {
    static const test::UserFolders user;
    return user;
}

// Eleven minutes of 640x360, groups of 2 s with B-frames, and sound.
const std::string& longClip() {
    static const std::string path = [] {
        const std::string minute = folders().file("minute.mp4");
        const std::string clip = folders().file("clip.mp4");
        const auto make = [](std::string_view options, const std::string& output) {
            std::vector<std::string> words = test::wordsOf(options);
            words.insert(words.begin(), {"-v", "error", "-y"});
            words.push_back(output);
            test::runTool("ffmpeg", words);
        };
        make("-f lavfi -i testsrc2=s=640x360:r=25:d=60 -f lavfi -i sine=d=60 -c:v libx264 -preset veryfast "
             "-g 50 "
             "-keyint_min 50 -sc_threshold 0 -bf 3 -pix_fmt yuv420p -c:a aac -ac 2",
             minute);
        make("-stream_loop 10 -i " + minute + " -c copy", clip);
        return clip;
    }();
    return path;
}

constexpr double start = 20.7;
constexpr double end = 620.7;

void cutExactly() {
    CorvantaSdkVideoEditorInput input;
    input.videoURL = URL::fromFilePath(longClip());
    input.outputURL = URL::fromFilePath(folders().file("exact.mp4"));
    input.startPosition = start;
    input.endPosition = end;
    input.cut = CorvantaSdkVideoCut::exact;
    runBlocking(makeCorvantaSdkVideoEditor()->edit(input));
}

void cutByFFmpeg(const std::string& pictureOptions) {
    std::vector<std::string> words{"ffmpeg", "-v",
                                   "error",  "-y",
                                   "-i",     longClip(),
                                   "-ss",    std::to_string(start),
                                   "-to",    std::to_string(end),
                                   "-c:a",   "aac"};
    for (const std::string& word : test::wordsOf(pictureOptions)) {
        words.push_back(word);
    }
    words.push_back(folders().file("bare.mp4"));
    runBare(std::move(words));
}

void prepare() {
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    FFmpegKitConfig::setLogLevel("error");
    longClip();
}

void exactCutBesideCopying(benchmark::State& state) {
    prepare();
    compareInTurn(
        state, [] { cutByFFmpeg("-c:v copy"); }, cutExactly);
}
BENCHMARK(exactCutBesideCopying)->Iterations(3)->UseManualTime()->Unit(benchmark::kSecond);

void exactCutBesideEncoding(benchmark::State& state) {
    prepare();
    compareInTurn(
        state, [] { cutByFFmpeg("-c:v libx264"); }, cutExactly);
}
BENCHMARK(exactCutBesideEncoding)->Iterations(1)->UseManualTime()->Unit(benchmark::kSecond);

} // namespace
} // namespace corvanta
