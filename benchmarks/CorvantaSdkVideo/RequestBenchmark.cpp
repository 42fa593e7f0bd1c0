#include "Cost.hpp"
#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>
#include <platform/CommandWords.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace corvanta;
using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;

// By itself: started, its output thrown away, and waited for.
void runBare(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (error != 0 || waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error(words.front() + " failed");
    }
}

void runBareScript(const std::string& script) {
    std::vector<std::string> words = splitCommand(script);
    words.insert(words.begin(), {"ffmpeg", "-nostdin", "-v", "error"});
    runBare(std::move(words));
}

void runBareProbe(const std::string& path) {
    runBare({"ffprobe", "-i", path, "-v", "quiet", "-print_format", "json", "-show_format", "-show_streams",
             "-hide_banner"});
}

double median(std::vector<Cost> costs, double Cost::*what) {
    std::ranges::sort(costs, {}, what);
    return costs[costs.size() / 2].*what;
}

// Both in turn, and each first in every other round, so that what else the machine does falls on both.
template <typename Bare, typename Build>
void compare(benchmark::State& state, Bare bare, Build build) {
    std::vector<Cost> ofBare;
    std::vector<Cost> ofModule;
    const auto runModule = [&build] {
        const RequestPointer request = build();
        runBlocking(request->process());
    };
    // What earlier work left for the disk to do is none of the next one's.
    const auto measureBare = [&] {
        sync();
        ofBare.push_back(costOf(bare));
    };
    for (auto _ : state) {
        const bool bareFirst = ofBare.size() % 2 == 0;
        if (bareFirst) {
            measureBare();
        }
        sync();
        ofModule.push_back(costOf(runModule));
        state.SetIterationTime(ofModule.back().wall);
        if (!bareFirst) {
            measureBare();
        }
    }
    state.counters["bare_s"] = median(ofBare, &Cost::wall);
    state.counters["module_s"] = median(ofModule, &Cost::wall);
    state.counters["bare_processor_s"] = median(ofBare, &Cost::processor);
    state.counters["module_processor_s"] = median(ofModule, &Cost::processor);
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

// Goal: at most 1.05 times the bare command and its probes, of which every input has two.
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
            for (int round = 0; round < 2; ++round) {
                std::ranges::for_each(paths, runBareProbe);
            }
            runBareScript("-y -f concat -safe 0 -i " + place.directory.file("list.txt") + " -c copy " +
                          place.directory.file("bare.mov"));
        },
        [&] { return CorvantaSdkVideo->ConcatBuilder(place.files(paths), place.output()).build(); });
}
BENCHMARK(concatOfTenLargeClips)->UseManualTime()->Iterations(5)->Unit(benchmark::kSecond);

// Goal of both: at most 1.03 times the bare command.
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
BENCHMARK(mergeOfTwoClips)->UseManualTime()->Iterations(5)->Unit(benchmark::kSecond);

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
BENCHMARK(encodeOfOneClip)->UseManualTime()->Iterations(5)->Unit(benchmark::kSecond);

} // namespace
