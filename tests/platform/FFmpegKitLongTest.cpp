#include "support/Processes.hpp"
#include "support/SessionProbe.hpp"

#include <platform/FFmpegKit.hpp>

#include <gtest/gtest.h>

#include <atomic>

#include <unistd.h>

namespace corvanta::test {
namespace {


TEST(FFmpegKitLongTest, AChildThatIgnoresTheSignalIsKilledInTheEnd) {
    const FakeProgram fake(ffmpegVariable, "trap '' TERM\necho ready >&2\nwhile :; do sleep 600; done\n");
    const SessionProbe run("");
    ASSERT_TRUE(run.waitForLine("ready"));
    FFmpegKit::cancel(run.id());
    EXPECT_EQ(run.wait(), ReturnCode::cancelled);
    EXPECT_EQ(run.completions(), 1);
    EXPECT_TRUE(eventually([] { return childrenOf(getpid()).empty(); }));
}

TEST(FFmpegKitLongTest, GigabytesOfOutput) {
    const FakeProgram fake(ffmpegVariable, "head -c 4G /dev/zero & head -c 2G /dev/zero >&2\nwait\n");
    std::atomic<std::size_t> logged = 0;
    std::atomic<bool> ended = false;
    resetPeakMemory();
    const std::size_t before = peakMemory();
    const auto session = FFmpegKit::executeAsync(
        "", [&](const std::shared_ptr<Session>&) { ended = true; },
        [&](const Log& log) { logged += log.getMessage().size(); }, nullptr);
    while (!ended) {
        ASSERT_TRUE(eventually([&, soFar = logged.load()] { return ended || logged > soFar; }));
    }
    EXPECT_EQ(logged, std::size_t{2} << 30U);
    if (memoryIsOurs) {
        EXPECT_LT(peakMemory() - before, std::size_t{16} << 20U);
    }
}

TEST(FFmpegKitLongTest, ThousandsOfRunsLeaveNothing) {
    const FakeProgram fake(ffmpegVariable, "exit 0");
    ASSERT_EQ(SessionProbe("").wait(), 0);
    const std::size_t descriptors = openDescriptors();
    for (int round = 0; round < 100; ++round) {
        std::vector<std::unique_ptr<SessionProbe>> runs;
        for (int run = 0; run < 50; ++run) {
            runs.push_back(std::make_unique<SessionProbe>(""));
            if (run % 3 == 0) {
                FFmpegKit::cancel(runs.back()->id());
            }
        }
        for (const auto& run : runs) {
            ASSERT_NE(run->wait(), -1);
            ASSERT_EQ(run->completions(), 1);
        }
    }
    EXPECT_TRUE(eventually([&] { return openDescriptors() == descriptors; }));
    EXPECT_TRUE(eventually([] { return childrenOf(getpid()).empty(); }));
}

} // namespace
} // namespace corvanta::test
