#include "support/SessionProbe.hpp"

#include <platform/FFmpegKit.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace corvanta::test {
namespace {

using testing::ElementsAre;

constexpr const char* ffprobeVariable = "CORVANTA_FFPROBE";

TEST(FFmpegKitTest, ReturnCodes) {
    for (const auto& [script, returnCode] : {std::pair("exit 0", 0),
                                             {"exit 123", 123},
                                             {"kill -TERM $$", 255},
                                             {"kill -KILL $$", 255},
                                             {"sleep 1000 & exit 3", 3}}) {
        for (const Tool tool : {Tool::ffmpeg, Tool::ffprobe}) {
            SCOPED_TRACE(script);
            const FakeProgram fake(tool == Tool::ffmpeg ? ffmpegVariable : ffprobeVariable, script);
            const SessionProbe run("", tool);
            EXPECT_EQ(run.wait(), returnCode);
            EXPECT_EQ(run.state(), SessionState::completed);
            EXPECT_EQ(run.output(), tool == Tool::ffprobe ? "" : "absent");
        }
    }
    EXPECT_TRUE(eventually([] { return childrenOf(getpid()).empty(); }));
}

TEST(FFmpegKitTest, ProgramsThatCannotBeStarted) {
    const TemporaryDirectory directory;
    const std::string notExecutable = directory.file("plain");
    const std::string noInterpreter = directory.file("script");
    writeFile(notExecutable, "#!/bin/sh\n");
    writeFile(noInterpreter, "#!/no/such/interpreter\n");
    chmod(noInterpreter.c_str(), 0700);
    for (const std::string& program : {std::string("/no/such/ffmpeg"), std::string("no-such-ffmpeg"),
                                       directory.path().string(), notExecutable, noInterpreter}) {
        SCOPED_TRACE(program);
        const ScopedVariable ffmpeg(ffmpegVariable, program);
        const ScopedVariable ffprobe(ffprobeVariable, program);
        const SessionProbe run("-version");
        EXPECT_EQ(run.wait(), ReturnCode::notStarted);
        EXPECT_EQ(run.state(), SessionState::failed);
        EXPECT_THAT(run.lines(), ElementsAre(testing::HasSubstr(program + " could not be started: ")));
        EXPECT_EQ(SessionProbe("-version", Tool::ffprobe).wait(), ReturnCode::notStarted);
    }
}

TEST(FFmpegKitTest, ProgramsComeFromPathPastDirectoriesAndPlainFiles) {
    const TemporaryDirectory directory;
    const auto path = [&](const char* name) { return directory.path() / name / "ffprobe"; };
    for (const auto& folder : {path("1"), path("2").parent_path(), path("3").parent_path()}) {
        std::filesystem::create_directories(folder);
    }
    writeFile(path("2"), "#!/bin/sh\necho plain\n");
    writeFile(path("3"), "#!/bin/sh\necho found\n");
    chmod(path("3").c_str(), 0700);
    const std::string root = directory.path();
    const ScopedVariable searched("PATH", root + "/1:" + root + "/2:" + root + "/3:/usr/bin:/bin");
    for (const auto& unset : {std::optional<std::string>(), std::optional<std::string>("")}) {
        const ScopedVariable variable(ffprobeVariable, unset);
        const SessionProbe run("", Tool::ffprobe);
        EXPECT_EQ(run.wait(), 0);
        EXPECT_EQ(run.output(), "found\n");
    }
}

TEST(FFmpegKitTest, ChildrenGetAnEmptyInputTheirOwnGroupAndNothingOfTheHosts) {
    const FakeProgram fake(ffprobeVariable, "printf '[%s]' \"$@\"\n"
                                            "cat\n"
                                            "[ \"$(cut -d' ' -f5 /proc/$$/stat)\" = $$ ] && echo own group\n"
                                            "grep -E 'Sig(Blk|Ign)' /proc/self/status\n"
                                            "[ -e /proc/$$/fd/77 ] || echo no descriptor\n");
    ASSERT_EQ(dup2(STDERR_FILENO, 77), 77);
    const auto before = std::signal(SIGTERM, SIG_IGN);
    const SessionProbe run(R"(-x "a  'b'" "" c\d $HOME *)", Tool::ffprobe);
    EXPECT_EQ(run.wait(), 0);
    std::signal(SIGTERM, before);
    close(77);
    EXPECT_EQ(run.output(), "[-x][a  'b'][][c\\d][$HOME][*]own group\n"
                            "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\nno descriptor\n");
}

TEST(FFmpegKitTest, LimitsOfARun) {
    constexpr std::uint64_t megabyte = 1U << 20U;
    const TemporaryDirectory directory;
    const std::string output = directory.file("out.avi");
    FFmpegKitConfig::setRunLimits({.memory = 2048 * megabyte, .fileSize = megabyte});
    const SessionProbe large("-f lavfi -i testsrc2=duration=5 -c:v rawvideo \"" + output + '"');
    EXPECT_EQ(large.wait(), 1);
    EXPECT_THAT(large.lines(), testing::Contains(testing::HasSubstr("File too large")));
    EXPECT_EQ(std::filesystem::file_size(output), megabyte);
    {
        const FakeProgram fake(ffprobeVariable, "ulimit -v");
        const SessionProbe run("-i a -i b", Tool::ffprobe);
        ASSERT_EQ(run.wait(), 0);
        EXPECT_EQ(run.output(), std::to_string(addressSpaceFor(2048 * megabyte, 2) / 1024) + '\n');
    }
    FFmpegKitConfig::setRunLimits({.memory = 64 * megabyte});
    EXPECT_NE(SessionProbe("-f lavfi -i testsrc2=duration=5 -f null -").wait(), 0);

    FFmpegKitConfig::setRunLimits({.stall = std::chrono::seconds(2)});
    for (const auto& [step, returnCode] : {std::pair(1, 0), {0, ReturnCode::stalled}}) {
        const FakeProgram fake(ffmpegVariable,
                               "n=1; i=0; while [ $i != 60 ]; do i=$((i+1)); n=$((n+" + std::to_string(step) +
                                   ")); sleep 0.05\n"
                                   "printf \"total_size=$n\\nprogress=continue\\n\" >&3; done\n");
        const SessionProbe run("");
        EXPECT_EQ(run.wait(), returnCode);
        EXPECT_EQ(run.lines().empty(), returnCode == 0);
    }
    const FakeProgram silent(ffprobeVariable, "exec sleep 600");
    EXPECT_EQ(SessionProbe("", Tool::ffprobe).wait(), ReturnCode::stalled);
    FFmpegKitConfig::setRunLimits({});
}

TEST(FFmpegKitTest, LateFramesAreThoseThatWouldBeDecodedUpTo) {
    const TemporaryDirectory directory;
    const std::string openGroups = "-c:v libx264 -preset ultrafast -bf 3 -b_strategy 0 "
                                   "-x264-params open-gop=1:keyint=100:scenecut=0 -pix_fmt yuv420p";
    for (const auto& [container, codecs] :
         {std::pair("mp4", openGroups),
          {"mkv", openGroups + " -output_ts_offset 7.3"},
          {"mov", openGroups + " -ss 1.3"},
          {"mp4", "-vf select='gt(random(1),0.4)' -vsync vfr -c:v mpeg4 -g 90 -bf 2 -output_ts_offset 3.1"},
          {"ts", openGroups}}) {
        const std::string clip =
            makeClip({.seconds = 14, .sounds = {}, .container = container, .codecs = codecs});
        for (const std::string position : {"7.96", "8.0", "11.333"}) {
            const std::string taken = directory.file("taken.jpg");
            const std::string expected = directory.file("expected.jpg");
            ASSERT_EQ(SessionProbe("-i \"" + clip + "\" -ss " + position + " -vframes 1 -y \"" + taken + '"')
                          .wait(),
                      0);
            runTool("ffmpeg", {"-i", clip, "-ss", position, "-vframes", "1", "-y", expected});
            EXPECT_TRUE(readFile(taken) == readFile(expected)) << clip << " " << position;
        }
    }
    const FakeProgram fake(ffmpegVariable, "echo \"$3 $4\" >&2; shift 10; echo \"$*\" >&2");
    const SessionProbe run("-i " + makeClip({.seconds = 14}) + " -ss 11.333 -vframes 1 out.jpg");
    ASSERT_EQ(run.wait(), 0);
    EXPECT_THAT(run.lines(), ElementsAre("-ss 9", "-ss 2.333 -vframes 1 out.jpg"));
}

TEST(FFmpegKitTest, GraphsTooLongForAnArgumentComeAsInput) {
    const FakeProgram fake(ffmpegVariable, "echo \"$3 $4 $5\" >&2; wc -c >&2");
    for (const auto& [length, lines] : {std::pair(131071, std::vector<std::string>{"0"}),
                                        {131072, {"-filter_complex_script pipe:0 end", "131072"}}}) {
        const SessionProbe run("-filter_complex " + std::string(length, 'x') + " end");
        ASSERT_EQ(run.wait(), 0);
        EXPECT_THAT(run.lines(), testing::IsSupersetOf(lines));
    }
}

TEST(FFmpegKitTest, LinesOfTheLog) {
    const FakeProgram fake(ffmpegVariable, "printf 'one\\ntwo\\rthree\\n\\n\\r\\nfour' >&2\necho out\n"
                                           "head -c 200000 /dev/zero | tr '\\0' x >&2\n");
    const SessionProbe run("");
    ASSERT_EQ(run.wait(), 0);
    const auto lines = run.lines();
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 3), ElementsAre("one", "two", "three"));
    std::size_t length = 0;
    for (std::size_t line = 3; line < lines.size(); ++line) {
        EXPECT_LE(lines[line].size(), 65536U);
        length += lines[line].size();
    }
    EXPECT_EQ(length, 200004U);
}

TEST(FFmpegKitTest, CallbacksOfOneSessionAndOfTheProcess) {
    std::atomic<std::size_t> lines = 0;
    std::vector<Statistics> own;
    std::vector<Statistics> shared;
    FFmpegKitConfig::setLogLevel("info");
    FFmpegKitConfig::enableLogCallback([&](const Log& log) { lines += log.getSessionId() > 0 ? 1U : 0U; });
    FFmpegKitConfig::enableStatisticsCallback(
        [&](const Statistics& statistics) { shared.push_back(statistics); });
    const std::string command = "-f lavfi -i testsrc2=size=64x64:rate=25:duration=4 -f null -";
    const SessionProbe run(command, Tool::ffmpeg,
                           [&](const Statistics& statistics) { own.push_back(statistics); });
    EXPECT_EQ(run.wait(), 0);
    FFmpegKitConfig::enableStatisticsCallback(nullptr);
    FFmpegKitConfig::enableLogCallback(nullptr);
    FFmpegKitConfig::setLogLevel("quiet");
    ASSERT_FALSE(own.empty());
    EXPECT_EQ(own.size(), shared.size());
    const Statistics last = own.back();
    EXPECT_EQ(last.sessionId, run.id());
    EXPECT_EQ(last.frame, 100);
    EXPECT_EQ(last.timeMillis, 4000);
    EXPECT_GT(last.speed, 0);
    EXPECT_EQ(run.lines().size(), lines);
    EXPECT_GT(lines, 3U);
    EXPECT_THAT(run.lines(), testing::Each(testing::Not(testing::HasSubstr("ffmpeg version"))));

    const SessionProbe quiet(command);
    EXPECT_EQ(quiet.wait(), 0);
    EXPECT_TRUE(quiet.lines().empty());
    FFmpegKitConfig::setLogLevel(std::nullopt);
}

TEST(FFmpegKitTest, ProgressThatIsNoNumberIsTakenAsNotKnown) {
    const FakeProgram fake(
        ffmpegVariable,
        "printf 'frame=\\nout_time_us=N/A\\nspeed=N/A\\nprogress=continue\\n"
        "frame= 7\\nnonsense\\n=\\nout_time_us=-1500\\nspeed=  2.5x\\nprogress=end\\n' >&3\n");
    std::vector<Statistics> seen;
    const SessionProbe run("", Tool::ffmpeg, [&](const Statistics& now) { seen.push_back(now); });
    ASSERT_EQ(run.wait(), 0);
    const auto is = [](int frame, int timeMillis, double speed) {
        return testing::AllOf(testing::Field(&Statistics::frame, frame),
                              testing::Field(&Statistics::timeMillis, timeMillis),
                              testing::Field(&Statistics::speed, speed));
    };
    EXPECT_THAT(seen, ElementsAre(is(0, 0, 0), is(7, -1, 2.5)));
}

TEST(FFmpegKitTest, EndlessOutputIsDrainedAndNotKept) {
    constexpr std::size_t megabyte = 1U << 20U;
    // Sanitizers take minutes for as much, and hide what it occupies.
    const std::size_t size = memoryIsOurs ? 100 : 10;
    const auto bytes = [&](std::size_t count) { return "head -c " + std::to_string(count) + "M /dev/zero"; };
    const std::string script =
        bytes(3 * size) + " & " + bytes(size) + " >&2 & " + bytes(size / 2) + " >&3\nwait\n";
    const FakeProgram ffmpeg(ffmpegVariable, script);
    const FakeProgram ffprobe(ffprobeVariable, script);
    std::atomic<std::size_t> logged = 0;
    std::atomic<bool> ended = false;
    resetPeakMemory();
    const std::size_t before = peakMemory();
    const auto session = FFmpegKit::executeAsync(
        "", [&](const std::shared_ptr<Session>&) { ended = true; },
        [&](const Log& log) { logged += log.getMessage().size(); }, nullptr);
    ASSERT_TRUE(eventually([&] { return ended.load(); }));
    EXPECT_EQ(session->getReturnCode()->getValue(), 0);
    EXPECT_EQ(logged, size * megabyte);
    if (memoryIsOurs) {
        EXPECT_LT(peakMemory() - before, 16 * megabyte);
    }
    const SessionProbe probe("", Tool::ffprobe);
    ASSERT_EQ(probe.wait(), 0);
    EXPECT_EQ(probe.output().size(), std::min(3 * size * megabyte, Session::outputLimit));
}

TEST(FFmpegKitTest, GrandchildThatKeepsThePipesOpenHoldsNothingUp) {
    const FakeProgram fake(ffmpegVariable,
                           "setsid sh -c 'echo $$ >&2; : >\"$0\"; exec sleep 600' \"$here/there\" &\n"
                           "while [ ! -e \"$here/there\" ]; do sleep 0.01; done\nexit 4\n");
    const SessionProbe run("");
    EXPECT_EQ(run.wait(), 4);
    ASSERT_EQ(run.lines().size(), 1U);
    const pid_t grandchild = std::stoi(run.lines()[0]);
    EXPECT_TRUE(isAlive(grandchild));
    kill(grandchild, SIGKILL);
}

TEST(FFmpegKitTest, IdsAreNoneOfAnotherProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const FakeProgram fake(ffmpegVariable, "exit 0");
    const SessionProbe first("");
    const SessionProbe second("");
    EXPECT_GT(first.id(), 0);
    EXPECT_GT(second.id(), first.id());
    EXPECT_TRUE(first.wait() == 0 && second.wait() == 0);
    // The statement runs in a new process of this program, which inherits the variable.
    const char* const other = std::getenv("OTHER_ID");
    const bool isNew = other != nullptr && std::abs(std::stoll(other) - first.id()) > 1000;
    const ScopedVariable variable("OTHER_ID", other != nullptr ? other : std::to_string(first.id()));
    EXPECT_EXIT(std::_Exit(isNew ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(FFmpegKitTest, RunsBeyondTheLimitWaitInLine) {
    const FakeProgram ffmpeg(ffmpegVariable, "echo $3 >>\"$here/order\"\n"
                                             "while [ ! -e \"$here/go\" ]; do sleep 0.02; done\n");
    const FakeProgram ffprobe(ffprobeVariable, "exit 0");
    FFmpegKitConfig::setMaximumRuns(1, 0);
    std::vector<std::unique_ptr<SessionProbe>> runs;
    for (int run = 0; run < 6; ++run) {
        runs.push_back(std::make_unique<SessionProbe>(std::to_string(run)));
    }
    EXPECT_EQ(SessionProbe("", Tool::ffprobe).wait(), 0);
    FFmpegKit::cancel(runs[2]->id());
    EXPECT_EQ(runs[2]->wait(), ReturnCode::cancelled);
    EXPECT_EQ(runs[1]->state(), SessionState::created);
    writeFile(ffmpeg.file("go"), "");
    for (const int run : {0, 1, 3, 4, 5}) {
        EXPECT_EQ(runs[static_cast<std::size_t>(run)]->wait(), 0);
    }
    EXPECT_EQ(readFile(ffmpeg.file("order")), "0\n1\n3\n4\n5\n");

    // More of them than there are descriptors for, whatever the limit.
    FFmpegKitConfig::setMaximumRuns(1000, 0);
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit few{std::min<rlim_t>(usual.rlim_max, openDescriptors() + 50), usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    runs.clear();
    for (int run = 0; run < 100; ++run) {
        runs.push_back(std::make_unique<SessionProbe>(""));
    }
    for (const auto& run : runs) {
        EXPECT_EQ(run->wait(), 0);
    }
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
    FFmpegKitConfig::setMaximumRuns(0, 0);
}

TEST(FFmpegKitTest, WithoutDescriptorsARunFailsAndLaterOnesWork) {
    {
        // The undefined-behaviour sanitizer opens a pipe when it first sees the error's type, later it can't.
        const ScopedVariable program(ffmpegVariable, "/no/such/ffmpeg");
        ASSERT_EQ(SessionProbe("").wait(), ReturnCode::notStarted);
    }
    const FakeProgram fake(ffmpegVariable, "exit 0");
    ASSERT_EQ(SessionProbe("").wait(), 0);
    const std::size_t before = openDescriptors();
    // Of our own making, as the machine's limit may be more than the whole system has.
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit few{std::min<rlim_t>(usual.rlim_max, 256), usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<int> taken;
    for (int made = 0; (made = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
        taken.push_back(made);
    }
    int successes = 0;
    for (int freed = 0; freed < 16; ++freed) {
        const int code = SessionProbe("").wait();
        EXPECT_TRUE(code == ReturnCode::notStarted || code == 0) << freed << " " << code;
        EXPECT_TRUE(freed > 0 || code == ReturnCode::notStarted);
        successes += code == 0 ? 1 : 0;
        close(taken.back());
        taken.pop_back();
    }
    EXPECT_GT(successes, 0);
    for (const int descriptor : taken) {
        close(descriptor);
    }
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
    EXPECT_TRUE(eventually([&] { return openDescriptors() == before; }));
    EXPECT_TRUE(eventually([] { return childrenOf(getpid()).empty(); }));
}

} // namespace
} // namespace corvanta::test
