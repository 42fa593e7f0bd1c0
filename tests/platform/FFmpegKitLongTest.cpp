#include "support/SessionProbe.hpp"

#include <platform/FFmpegKit.hpp>

#include <gtest/gtest.h>

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

} // namespace
} // namespace corvanta::test
