#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/Task.hpp>

#include <benchmark/benchmark.h>

namespace {

using namespace corvanta;

// What the host's own memory does while ffmpeg encodes: flat means that ten minutes cost no more than one.
void hostMemoryWhileEncoding(benchmark::State& state) {
    const test::TemporaryDirectory directory;
    const std::string seconds = std::to_string(state.range(0) * 60);
    std::int64_t updates = 0;
    FFmpegKitConfig::setLogLevel("error");
    FFmpegKitConfig::enableStatisticsCallback([&updates](const Statistics&) { ++updates; });
    FFMPEGCommandExecutorImplementation executor;
    test::resetPeakMemory();
    const std::size_t before = test::peakMemory();
    for (auto _ : state) {
        runBlocking(
            executor.executeFFMPEGCommand("-y -f lavfi -i testsrc2=size=128x96:rate=25:duration=" + seconds +
                                          " -c:v mpeg4 \"" + directory.file("out.mp4") + '"'));
    }
    FFmpegKitConfig::enableStatisticsCallback(nullptr);
    const auto megabytes = [](std::size_t bytes) { return static_cast<double>(bytes) / (1U << 20U); };
    state.counters["peak_MB"] = megabytes(test::peakMemory());
    state.counters["growth_MB"] = megabytes(test::peakMemory() - before);
    state.counters["updates"] = static_cast<double>(updates);
}
BENCHMARK(hostMemoryWhileEncoding)
    ->ArgName("minutes")
    ->Arg(1)
    ->Arg(10)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kSecond);

} // namespace
