#include "CorvantaSdkVideo/Commands/MergeRun.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace corvanta {
namespace {

using test::Clip;
using test::makeClip;
using test::MergeRun;
using test::TemporaryDirectory;

std::int64_t residentBytes() {
    std::int64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * sysconf(_SC_PAGESIZE);
}

// The files of a list are often the same ones, under names of their own so that each is an input.
std::vector<CorvantaSdkVideoInformation> copies(const std::vector<Clip>& clips, int count,
                                                const TemporaryDirectory& directory) {
    std::vector<CorvantaSdkVideoInformation> originals;
    for (const Clip& clip : clips) {
        originals.push_back(test::probed(makeClip(clip)));
    }
    std::vector<CorvantaSdkVideoInformation> files;
    for (int number = 0; number < count; ++number) {
        CorvantaSdkVideoInformation info = originals[static_cast<std::size_t>(number) % originals.size()];
        const std::string path = directory.file(std::to_string(number) + ".mp4");
        std::filesystem::create_symlink(info.url.path(), path);
        info.url = URL::fromFilePath(path);
        info.path = info.url.absoluteString();
        files.push_back(std::move(info));
    }
    return files;
}

TEST(LargeMerge, EndsWholeWithoutGrowingTheModule) {
    const test::Picture large{.source = "testsrc2", .width = 3840, .height = 2160};
    for (const auto& [clips, count] :
         {std::pair(std::vector<Clip>{{.seconds = 0.2}, {.seconds = 0.5, .sounds = {}}}, 200),
          {{{.seconds = 2, .pictures = {large}}}, 3}}) {
        SCOPED_TRACE(count);
        const TemporaryDirectory directory;
        const MergeRun run{.files = copies(clips, count, directory)};
        std::int64_t total = 0;
        for (const auto& file : run.files) {
            total += file.durationMillis;
        }
        const std::int64_t before = residentBytes();
        const auto merged = run.into(directory.file("out.mp4"));
        EXPECT_LT(residentBytes() - before, 16 << 20);
        ASSERT_EQ(merged.videos.size(), 1U);
        ASSERT_EQ(merged.audios.size(), 1U);
        EXPECT_LE(std::abs(merged.videos[0].durationMillis - total), 34);
        // AAC fills its last frame up, and nothing cuts that off: each file's sound may run 22 ms longer.
        EXPECT_GE(merged.audios[0].durationMillis, total - 34);
        EXPECT_LE(merged.audios[0].durationMillis, total + count * 22);
    }
}

} // namespace
} // namespace corvanta
