#include "support/MediaFixtures.hpp"

#include <platform/InProcessProbe.hpp>
#include <platform/ProbeAhead.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <ranges>
#include <string>
#include <vector>

namespace corvanta::test {
namespace {

// As old as the checkout: only what is old enough is remembered.
TEST(ProbeAheadTest, ChangesNoAnswer) {
    const TemporaryDirectory directory;
    std::vector<std::string> files;
    for (int number = 0; number < 40; ++number) {
        files.push_back(directory.file(std::to_string(number)));
        std::filesystem::create_symlink(KEPT_CLIP, files.back());
    }
    const auto expected = probeInProcess(KEPT_CLIP, {});
    ASSERT_TRUE(expected);
    const ProbeAhead ahead(files);
    // From the other end, so that both meet.
    for (const std::string& file : files | std::views::reverse) {
        auto answer = probeInProcess(file, {});
        ASSERT_TRUE(answer);
        const auto name = answer->find('"' + file + '"');
        ASSERT_NE(name, answer->npos);
        EXPECT_EQ(answer->replace(name + 1, file.size(), KEPT_CLIP), *expected);
        EXPECT_TRUE(isProbeRemembered(file));
    }
    const ProbeAhead nothingToDo(files);
    const ProbeAhead droppedAtOnce({directory.file("missing"), directory.path(), "https://example.org/"});
}

} // namespace
} // namespace corvanta::test
