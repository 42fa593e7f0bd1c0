#include "BarePrograms.hpp"
#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/Commands/Encoding/EncodingForms.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>
#include <platform/CommandWords.hpp>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

using namespace corvanta;
using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;

void runBareScript(const std::string& script) {
    std::vector<std::string> words = splitCommand(script);
    words.insert(words.begin(), {"ffmpeg", "-nostdin", "-v", "error"});
    runBare(std::move(words));
}

// Measures a request's run beside the bare command.
template <typename Bare, typename Build>
void compare(benchmark::State& state, Bare bare, Build build) {
    compareInTurn(state, bare, [&build] {
        const RequestPointer request = build();
        runBlocking(request->process());
    });
}

/// A store and outputs of its own, and somebody logged in.
struct Place {
    Place() {
        static const test::TemporaryDirectory home;
        setenv("XDG_DATA_HOME", home.file("data").c_str(), 1);
        FFmpegKitConfig::setLogLevel("error");
    }

    std::vector<CorvantaSdkVideoFile> files(const std::vector<std::string>& paths) const {
        std::vector<CorvantaSdkVideoFile> list;
        for (const std::string& path : paths) {
            list.emplace_back(URL::fromFilePath(path));
        }
        return list;
    }

    CorvantaSdkVideoFileDescriptor output() const {
        return CorvantaSdkVideoFileDescriptor::custom(directory.file("out"));
    }

    test::TemporaryDirectory directory;
    test::RecordedLog log;
};

// Goal: at most 1.05 times the bare command.
void concatOfTenLargeClips(benchmark::State& state) {
    const Place place;
    const std::string large = test::makeClip({.seconds = 1.9,
                                              .pictures = {{.width = 1280, .height = 720}},
                                              .container = "mov",
                                              .codecs = "-c:v rawvideo -pix_fmt uyvy422 -c:a aac"});
    std::vector<std::string> paths;
    std::ofstream list(place.directory.file("list.txt"));
    for (int number = 0; number < 10; ++number) {
        paths.push_back(place.directory.file("clip" + std::to_string(number) + ".mov"));
        std::filesystem::create_hard_link(large, paths.back());
        list << "file " << paths.back() << '\n';
    }
    list.close();
    state.counters["clip_MB"] = static_cast<double>(std::filesystem::file_size(large)) / 1e6;
    compare(
        state,
        [&] {
            runBareScript("-y -f concat -safe 0 -i " + place.directory.file("list.txt") + " -c copy " +
                          place.directory.file("bare.mov"));
        },
        [&] { return CorvantaSdkVideo->ConcatBuilder(place.files(paths), place.output()).build(); });
}
BENCHMARK(concatOfTenLargeClips)->UseManualTime()->Iterations(7)->Unit(benchmark::kSecond);

// Goal of these: at most 1.03 times the bare command.
void mergeOfTwoClips(benchmark::State& state) {
    const Place place;
    const std::vector<std::string> paths = {
        test::makeClip({.seconds = 15, .pictures = {{.width = 1280, .height = 720}}}),
        test::makeClip({.seconds = 15, .pictures = {{.width = 640, .height = 480, .rate = "25"}}})};
    const auto script = FFMPEGMergeCommandGenerator().generateCommand(
        {test::probed(paths[0]), test::probed(paths[1])}, std::nullopt, std::nullopt, {}, {},
        CorvantaSdkVideoFrameRate::thirtyFps, place.directory.file("bare.mp4"));
    compare(
        state, [&] { runBareScript(script.script); },
        [&] { return CorvantaSdkVideo->MergeBuilder(place.files(paths), place.output()).build(); });
}
BENCHMARK(mergeOfTwoClips)->UseManualTime()->Iterations(7)->Unit(benchmark::kSecond);

void encodeOfOneClip(benchmark::State& state) {
    const Place place;
    const std::string path = test::makeClip({.seconds = 30, .pictures = {{.width = 1280, .height = 720}}});
    const auto script = FFMPEGMergeCommandGenerator().generateCommand(
        {test::probed(path)}, 960.0, std::nullopt, {}, {}, CorvantaSdkVideoFrameRate::thirtyFps,
        place.directory.file("bare.mp4"));
    compare(
        state, [&] { runBareScript(script.script); },
        [&] {
            auto builder = CorvantaSdkVideo->EncodingBuilder(place.files({path}).front(), place.output());
            builder.width = 960;
            return builder.build();
        });
}
BENCHMARK(encodeOfOneClip)->UseManualTime()->Iterations(7)->Unit(benchmark::kSecond);

void encodeWithAChosenEncoder(benchmark::State& state) {
    const Place place;
    const std::string path = test::makeClip({.seconds = 30, .pictures = {{.width = 1280, .height = 720}}});
    const CorvantaSdkVideoEncoding encoding{.quality = CorvantaSdkVideoEncoding::Quality::high,
                                            .preset = CorvantaSdkVideoEncoding::Preset::superfast,
                                            .audioBitRate = 192'000,
                                            .faststart = true,
                                            .encoders = {"libx264"}};
    const MergeCommand command{.inputs = {test::probed(path)},
                               .outputPath = place.directory.file("bare.mp4")};
    const std::string script = encoderRuns(command, encoding, {"libx264"}).front().script;
    compare(
        state, [&] { runBareScript(script); },
        [&] {
            auto builder = CorvantaSdkVideo->EncodingBuilder(place.files({path}).front(), place.output());
            builder.encoding = encoding;
            return builder.build();
        });
}
BENCHMARK(encodeWithAChosenEncoder)->UseManualTime()->Iterations(7)->Unit(benchmark::kSecond);

} // namespace
