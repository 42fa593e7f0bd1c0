#include "support/Processes.hpp"

#include <platform/AssetReader.hpp>
#include <platform/Errors.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>

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

TEST(AssetReaderTest, WhatIsNoMediaFileIsRefused) {
    const TemporaryDirectory directory;
    const std::string clip = readFile(makeClip({}));
    writeFile(directory.file("empty.mp4"), "");
    writeFile(directory.file("text.mp4"), "hello\n");
    writeFile(directory.file("garbage.mp4"), std::string(100000, '\x5a'));
    writeFile(directory.file("truncated.mp4"), clip.substr(0, clip.size() / 2));
    mkfifo(directory.file("pipe.mp4").c_str(), 0600);
    for (const char* name :
         {"empty.mp4", "text.mp4", "garbage.mp4", "truncated.mp4", "pipe.mp4", "missing.mp4", "", "."}) {
        try {
            readerOf(directory.file(name)).duration();
            ADD_FAILURE() << name;
        } catch (const PlatformError& error) {
            EXPECT_EQ(error.domain(), "AssetReader");
            EXPECT_LT(error.code(), 0);
        }
    }
}

} // namespace
} // namespace corvanta::test
