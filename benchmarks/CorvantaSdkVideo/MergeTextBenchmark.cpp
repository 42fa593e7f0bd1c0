#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace corvanta {
namespace {

std::vector<CorvantaSdkVideoInformation> files(std::int64_t count) {
    std::vector<CorvantaSdkVideoInformation> infos;
    for (std::int64_t number = 0; number < count; ++number) {
        const CorvantaSdkVideoTrackInformation video(0, 1920, 1080, "h264", "avc1", "yuv420p", 0, "30/1", 0,
                                                     4900);
        CorvantaSdkVideoAudioTrackInformation audio;
        audio.index = 1;
        audio.durationMillis = 4900;
        const std::string path = "/home/user/Videos/holiday clip " + std::to_string(number) + ".mp4";
        infos.emplace_back(URL::fromFilePath(path), 0, 5000, "mov,mp4,m4a,3gp,3g2,mj2", std::vector{video},
                           std::vector{audio}, Orientation::landscape, VideoSize{1920, 1080});
    }
    return infos;
}

// Every stream ends before its file, so that each needs a filler: the longest text.
void mergeText(benchmark::State& state) {
    const auto infos = files(state.range(0));
    const FFMPEGMergeCommandGenerator generator;
    for (auto _ : state) {
        benchmark::DoNotOptimize(generator.generateCommand(
            infos, 1280.0, 720.0, {}, {}, CorvantaSdkVideoFrameRate::thirtyFps, "/tmp/out.mp4"));
    }
}
BENCHMARK(mergeText)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace corvanta
