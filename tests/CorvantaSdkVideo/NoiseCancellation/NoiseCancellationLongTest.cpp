#include "CorvantaSdkVideo/NoiseCancellation/CleaningRun.hpp"
#include "support/Processes.hpp"

#include <gmock/gmock.h>

namespace corvanta::test {
namespace {

// In Matroska, since a reader of MPEG-4 holds the place of every frame of the file: 19 MB for two hours.
TEST(NoiseCancellationLongTest, TwoHoursTakeNoMoreMemoryThanTwoMinutes) {
    const CleaningRun run;
    const std::string minute = makeClip({.seconds = 60,
                                         .pictures = {{.source = "color=c=red", .width = 64, .height = 64}},
                                         .sounds = {{.layout = "mono"}}});
    const auto peakFor = [&](int minutes) {
        const std::string input = run.file("long.mkv");
        runTool("ffmpeg", {"-v", "error", "-y", "-stream_loop", std::to_string(minutes - 1), "-i", minute,
                           "-c", "copy", input});
        resetPeakMemory();
        const std::string output = run.clean(input, run.file("cleaned"));
        const std::size_t peak = peakMemory();
        EXPECT_NEAR(static_cast<double>(probed(output).durationMillis), minutes * 60000.0, minutes * 50.0);
        return peak;
    };
    const std::size_t atTwoMinutes = peakFor(2);
    const std::size_t atTwoHours = peakFor(120);
    RecordProperty("peak_at_two_hours", std::to_string(atTwoHours));
    std::printf("peak: %zu KiB after two minutes, %zu KiB after two hours\n", atTwoMinutes >> 10U,
                atTwoHours >> 10U);
    if (memoryIsOurs) {
        EXPECT_LT(atTwoHours, atTwoMinutes + (4U << 20U));
    }
}

} // namespace
} // namespace corvanta::test
