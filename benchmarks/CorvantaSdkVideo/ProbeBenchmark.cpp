#include "support/MediaFixtures.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <platform/Task.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace corvanta;
using Clock = std::chrono::steady_clock;

// The command that the module runs, by itself: started, read to the end and waited for.
void runBareProbe(const std::string& path) {
    std::vector<std::string> words = {
        "ffprobe", "-i",           "file://" + path, "-v",          "quiet", "-print_format",
        "json",    "-show_format", "-show_streams",  "-hide_banner"};
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    pid_t child = 0;
    const int error = posix_spawnp(&child, "ffprobe", &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error != 0) {
        throw std::runtime_error("ffprobe");
    }
    std::array<char, 16384> buffer;
    while (read(ends[0], buffer.data(), buffer.size()) > 0) {
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
}

template <typename Work>
double millisecondsOf(Work work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// Both in turn, so that what else the machine does falls on both. Goal: at most 5 ms of overhead.
void getMediaInformationAgainstBareProbe(benchmark::State& state) {
    const std::string path = test::makeClip({});
    FFMPEGCommandExecutorImplementation executor;
    std::vector<double> bare;
    std::vector<double> module;
    for (auto _ : state) {
        bare.push_back(millisecondsOf([&] { runBareProbe(path); }));
        module.push_back(
            millisecondsOf([&] { runBlocking(executor.getMediaInformation(URL::fromFilePath(path))); }));
        state.SetIterationTime(module.back() / 1000);
    }
    state.counters["bare_ms"] = median(bare);
    state.counters["module_ms"] = median(module);
    state.counters["overhead_ms"] = median(module) - median(bare);
    // The quickest run of each was disturbed least.
    state.counters["least_overhead_ms"] = std::ranges::min(module) - std::ranges::min(bare);
}
BENCHMARK(getMediaInformationAgainstBareProbe)
    ->UseManualTime()
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);

} // namespace
