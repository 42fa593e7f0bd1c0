#include "support/Processes.hpp"

#include <platform/AssetReader.hpp>

#include <gtest/gtest.h>

namespace corvanta::test {
namespace {

AssetReader readerOf(const std::string& path) { return AssetReader(URL::fromFilePath(path)); }

TEST(AssetReaderTest, MatrixAndDurationOfEveryContainer) {
    for (const auto& [rotation, transform] : std::vector<std::pair<int, AffineTransform>>{
             {-90, {0, 1, -1, 0}}, {90, {0, -1, 1, 0}}, {180, {-1, 0, 0, -1}}}) {
        for (const char* container : {"mp4", "mov"}) {
            auto reader = readerOf(makeClip({.container = container, .rotation = rotation}));
            EXPECT_EQ(reader.firstVideoTrackTransform(), transform) << rotation << " " << container;
        }
    }
    for (const char* container : {"mp4", "mov", "mkv", "avi", "ts", "mpg"}) {
        auto reader =
            readerOf(makeClip({.seconds = 2, .container = container, .codecs = "-c:v mpeg4 -c:a mp2"}));
        EXPECT_NEAR(reader.duration(), 2, 0.1) << container;
        EXPECT_EQ(reader.firstVideoTrackTransform(), AffineTransform{}) << container;
    }
    EXPECT_FALSE(readerOf(makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"}))
                     .firstVideoTrackTransform());
}

} // namespace
} // namespace corvanta::test
