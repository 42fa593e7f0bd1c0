#include "support/Processes.hpp"

#include <gtest/gtest.h>

#include <csignal>

namespace corvanta::test {
namespace {

TEST(HostDeathTest, NoChildOutlivesItsHost) {
    const FakeProgram stubborn("CORVANTA_NOTHING", "trap '' TERM INT HUP\nwhile :; do sleep 60; done\n");
    struct Death {
        std::string program;
        int signal;
    };
    for (const Death& death :
         {Death{"ffmpeg", SIGKILL}, Death{"ffmpeg", SIGTERM}, Death{stubborn.file("program"), SIGKILL}}) {
        SCOPED_TRACE(death.program + " " + std::to_string(death.signal));
        Program host(DYING_HOST, {"-re -f lavfi -i testsrc2=size=64x64 -f null -"},
                     {.environment = {{"CORVANTA_FFMPEG", death.program}}});
        std::vector<pid_t> children;
        ASSERT_TRUE(eventually([&] { return !(children = childrenOf(host.pid())).empty(); }));
        ASSERT_TRUE(isAlive(children.front()));
        host.signal(death.signal);
        EXPECT_EQ(host.wait(), -death.signal);
        EXPECT_TRUE(eventually([&] { return !isAlive(children.front()); }));
    }
}

} // namespace
} // namespace corvanta::test
