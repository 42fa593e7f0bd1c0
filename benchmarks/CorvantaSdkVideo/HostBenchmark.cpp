#include "BarePrograms.hpp"
#include "support/MediaFixtures.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>
#include <platform/CommandWords.hpp>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

/// The terminal host beside bare programs, whole processes each.
namespace {

using namespace corvanta;

// A store and outputs of its own.
struct Place {
    Place() { setenv("XDG_DATA_HOME", directory.file("data").c_str(), 1); }

    // So many names of one clip.
    std::vector<std::string> names(const std::string& clip, int count) const {
        std::vector<std::string> paths;
        for (int number = 0; number < count; ++number) {
            paths.push_back(directory.file("clip" + std::to_string(number) + ".mp4"));
            std::filesystem::create_symlink(clip, paths.back());
        }
        return paths;
    }

    // Never the same twice, since what is there would have to be overwritten.
    std::string output() { return directory.file("out" + std::to_string(++outputs)); }

    test::TemporaryDirectory directory;
    int outputs = 0;
};

void runHost(std::vector<std::string> words, const std::vector<std::string>& files) {
    words.insert(words.begin(), CORVANTA_HOST);
    words.insert(words.end(), files.begin(), files.end());
    runBare(std::move(words));
}

void runBareFfmpeg(const std::string& command) {
    std::vector<std::string> words = splitCommand(command);
    words.insert(words.begin(), {"ffmpeg", "-nostdin", "-v", "error"});
    runBare(std::move(words));
}

// Goal: at most 1.3 times.
void joinOfTenSmallClips(benchmark::State& state) {
    Place place;
    const auto clips = place.names(test::makeClip({.seconds = 20}), 10);
    const std::string list = place.directory.file("list.txt");
    std::ofstream lines(list);
    for (const std::string& clip : clips) {
        lines << "file " << clip << '\n';
    }
    lines.close();
    compareInTurn(
        state,
        [&] { runBareFfmpeg("-y -f concat -safe 0 -i " + list + " -c copy " + place.output() + ".mp4"); },
        [&] {
            runHost({"concat", place.output()}, clips);
        });
}
BENCHMARK(joinOfTenSmallClips)->UseManualTime()->Iterations(9)->Unit(benchmark::kSecond);

// Goal: at most 1.03 times the processor time.
void encodeOfTwentySeconds(benchmark::State& state) {
    Place place;
    const std::string clip = test::makeClip({.seconds = 20, .pictures = {{.width = 1280, .height = 720}}});
    const auto script = FFMPEGMergeCommandGenerator().generateCommand(
        {test::probed(clip)}, 960.0, std::nullopt, {}, {}, CorvantaSdkVideoFrameRate::thirtyFps,
        place.output() + ".mp4");
    compareInTurn(
        state, [&] { runBareFfmpeg(script.script); },
        [&] {
            runHost({"encode", "--width", "960", place.output()}, {clip});
        });
}
BENCHMARK(encodeOfTwentySeconds)->UseManualTime()->Iterations(7)->Unit(benchmark::kSecond);

// Beside copying the picture and cleaning the sound in ffmpeg's own way. Goal: at most 1.5 times.
void cleaningOfTwentySeconds(benchmark::State& state) {
    Place place;
    const std::string clip = test::makeClip({.seconds = 20, .pictures = {{.width = 1280, .height = 720}}});
    compareInTurn(
        state, [&] { runBareFfmpeg("-i " + clip + " -c:v copy -af afftdn " + place.output() + ".mp4"); },
        [&] {
            runHost({"clean", "-o", place.output()}, {clip});
        });
}
BENCHMARK(cleaningOfTwentySeconds)->UseManualTime()->Iterations(9)->Unit(benchmark::kSecond);

// Goal: under 3 s.
void informationOfManyClips(benchmark::State& state) {
    Place place;
    const auto clips = place.names(test::makeClip({}), 300);
    for (auto _ : state) {
        state.SetIterationTime(costOf([&] { runHost({"info"}, clips); }).wall);
    }
}
BENCHMARK(informationOfManyClips)->UseManualTime()->Iterations(5)->Unit(benchmark::kSecond);

// Beside one ffprobe.
void informationOfOneClip(benchmark::State& state) {
    Place place;
    const std::string clip = test::makeClip({});
    compareInTurn(
        state,
        [&] {
            runBare(
                {"ffprobe", "-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", clip});
        },
        [&] { runHost({"info"}, {clip}); });
}
BENCHMARK(informationOfOneClip)->UseManualTime()->Iterations(25)->Unit(benchmark::kSecond);

} // namespace
