#include "support/SessionProbe.hpp"

#include <platform/FFmpegKit.hpp>

#include <gtest/gtest.h>

#include <thread>

namespace corvanta::test {
namespace {

constexpr const char* waiting = "echo ready >&2\nexec sleep 1000\n";

TEST(FFmpegKitCancelTest, AtOnce) {
    const FakeProgram fake(ffmpegVariable, "exec sleep 1000");
    for (int round = 0; round < 50; ++round) {
        const SessionProbe run("");
        FFmpegKit::cancel(run.id());
        ASSERT_EQ(run.wait(), ReturnCode::cancelled);
        ASSERT_EQ(run.state(), SessionState::completed);
    }
}

TEST(FFmpegKitCancelTest, OfUnknownAndEndedSessionsTouchesNothing) {
    const FakeProgram fake(ffmpegVariable, "exit 0");
    const SessionProbe ended("");
    ASSERT_EQ(ended.wait(), 0);
    const FakeProgram other(ffmpegVariable, waiting);
    const SessionProbe running("");
    ASSERT_TRUE(running.waitForLine("ready"));
    for (const std::int64_t id : {ended.id(), running.id() + 1000, std::int64_t{0}, std::int64_t{-1}}) {
        FFmpegKit::cancel(id);
    }
    EXPECT_EQ(running.state(), SessionState::running);
    FFmpegKit::cancel(running.id());
    EXPECT_EQ(running.wait(), ReturnCode::cancelled);
    FFmpegKit::cancel(running.id());
    FFmpegKit::cancel();
    EXPECT_EQ(ended.wait(), 0);
    EXPECT_EQ(ended.completions() + running.completions(), 2);
}

TEST(FFmpegKitCancelTest, ASecondCancelSendsNoSecondSignal) {
    const FakeProgram fake(ffmpegVariable, "trap 'echo TERM >&2' TERM\necho ready >&2\n"
                                           "while [ ! -e \"$here/go\" ]; do\n"
                                           "  [ -e \"$here/ping\" ] && echo pong >&2\n"
                                           "  sleep 0.02\ndone\nexit 9\n");
    const SessionProbe run("");
    ASSERT_TRUE(run.waitForLine("ready"));
    FFmpegKit::cancel(run.id());
    ASSERT_TRUE(run.waitForLine("TERM"));
    FFmpegKit::cancel(run.id());
    FFmpegKit::cancel();
    // A line that is asked for now arrives after whatever the two calls have sent.
    writeFile(fake.file("ping"), "");
    ASSERT_TRUE(run.waitForLine("pong"));
    writeFile(fake.file("go"), "");
    EXPECT_EQ(run.wait(), 9);
    const auto lines = run.lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "TERM"), 1);
}

TEST(FFmpegKitCancelTest, AllSessionsOfBothTools) {
    const FakeProgram ffmpeg(ffmpegVariable, waiting);
    const FakeProgram ffprobe("CORVANTA_FFPROBE", waiting);
    std::vector<std::unique_ptr<SessionProbe>> runs;
    for (int run = 0; run < 12; ++run) {
        runs.push_back(std::make_unique<SessionProbe>("", run % 2 == 0 ? Tool::ffmpeg : Tool::ffprobe));
    }
    FFmpegKit::cancel();
    for (const auto& run : runs) {
        EXPECT_EQ(run->wait(), ReturnCode::cancelled);
    }
}

TEST(FFmpegKitCancelTest, FromManyThreadsWhileRunsEndByThemselves) {
    const FakeProgram fake(ffmpegVariable, "exit 0");
    ASSERT_EQ(SessionProbe("").wait(), 0);
    const std::size_t descriptors = openDescriptors();
    std::vector<std::unique_ptr<SessionProbe>> runs;
    {
        std::vector<std::jthread> threads;
        for (int run = 0; run < 100; ++run) {
            runs.push_back(std::make_unique<SessionProbe>(""));
            if (run % 10 == 9) {
                threads.emplace_back([last = runs.back()->id()] {
                    for (std::int64_t id = last - 9; id <= last; ++id) {
                        FFmpegKit::cancel(id);
                    }
                });
            }
        }
    }
    for (const auto& run : runs) {
        const int code = run->wait();
        EXPECT_TRUE(code == 0 || code == ReturnCode::cancelled) << code;
    }
    EXPECT_EQ(SessionProbe("").wait(), 0);
    for (const auto& run : runs) {
        EXPECT_EQ(run->completions(), 1);
    }
    EXPECT_TRUE(eventually([] { return childrenOf(getpid()).empty(); }));
    EXPECT_TRUE(eventually([&] { return openDescriptors() == descriptors; })) << openDescriptors();
}

TEST(FFmpegKitCancelTest, CallbacksMayStartAndCancelSessions) {
    const FakeProgram fake(ffmpegVariable, waiting);
    std::atomic<int> ended = 0;
    const LogCallback cancelAtFirstLine = [](const Log& log) { FFmpegKit::cancel(log.getSessionId()); };
    const CompleteCallback startAnother = [&](const std::shared_ptr<Session>&) {
        FFmpegKit::executeAsync(
            "", [&](const std::shared_ptr<Session>&) { ++ended; }, cancelAtFirstLine, nullptr);
        ++ended;
    };
    FFmpegKit::executeAsync("", startAnother, cancelAtFirstLine, nullptr);
    EXPECT_TRUE(eventually([&] { return ended == 2; }));
}

} // namespace
} // namespace corvanta::test
