#include "support/Processes.hpp"

#include <gmock/gmock.h>

#include <csignal>

namespace corvanta::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// Folders of a host of its own.
struct HostFolders {
    TemporaryDirectory directory;
    Program::Options options{
        .environment = {{"TMPDIR", directory.file("tmp")}, {"XDG_DATA_HOME", directory.file("data")}}};

    HostFolders() { std::filesystem::create_directory(directory.file("tmp")); }

    std::vector<std::string> leftOver() const {
        return namesIn({directory.file("tmp"), directory.file("data/corvanta-sdk-video/documents")});
    }
};

// The places where a disk can be full: the extracted sound, the cleaned sound, the video.
TEST(CleanCommandTest, FullDisk) {
    const HostFolders folders;
    const std::string input = makeClip({.seconds = 4, .pictures = {{.width = 640, .height = 480}}});
    // By the limit in blocks of 512 bytes.
    for (const auto& [blocks, status, told] : {std::tuple(140, 1, "unableToProcessInput"),
                                               {254, 1, "Fatal error: The manual rendering failed: "},
                                               {280, 1, "could not be written"},
                                               {100000, 0, ""}}) {
        SCOPED_TRACE(blocks);
        const std::string limited =
            "trap '' XFSZ; ulimit -c 0; ulimit -f " + std::to_string(blocks) + "; exec \"$@\"";
        Program host("/bin/sh",
                     {"-c", limited, "sh", CORVANTA_HOST, "clean", folders.directory.file("out"), input},
                     folders.options);
        EXPECT_EQ(host.wait(), status);
        EXPECT_THAT(host.errors(), HasSubstr(told));
        EXPECT_EQ(std::filesystem::exists(folders.directory.file("out.mp4")), status == 0);
        EXPECT_THAT(folders.leftOver(), IsEmpty());
    }
}

// While the sound is extracted and while the video is written.
TEST(CleanCommandTest, InterruptedRunsLeaveNothing) {
    for (const std::string step : {"wav", "mp4"}) {
        SCOPED_TRACE(step);
        const HostFolders folders;
        const std::string clip = makeClip({});
        const FakeProgram ffmpeg("CORVANTA_FFMPEG",
                                 "for last; do :; done\ncase $last in *." + step +
                                     ") echo begun >\"$last\"; : >$here/begun; exec sleep 100;;\nesac\n"
                                     "exec ffmpeg \"$@\"\n");
        Program host(CORVANTA_HOST, {"clean", folders.directory.file("out"), clip}, folders.options);
        ASSERT_TRUE(eventually([&] { return std::filesystem::exists(ffmpeg.file("begun")); }));
        host.signal(SIGINT);
        EXPECT_EQ(host.wait(), 130);
        EXPECT_THAT(host.errors(), HasSubstr("cancelled"));
        EXPECT_FALSE(std::filesystem::exists(folders.directory.file("out.mp4")));
        EXPECT_THAT(folders.leftOver(), IsEmpty());
    }
}

} // namespace
} // namespace corvanta::test
