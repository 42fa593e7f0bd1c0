#include "support/Processes.hpp"

#include <platform/AssetReader.hpp>
#include <platform/Errors.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace corvanta::test {
namespace {

AssetReader readerOf(const std::string& path) { return AssetReader(URL::fromFilePath(path)); }

const std::string noCodecs = "-c:v mpeg4 -c:a mp2";

TEST(AssetReaderTest, Matrix) {
    struct Case {
        int rotation;
        AffineTransform transform;
    };
    for (const Case& expected :
         {Case{0, {}}, {-90, {0, 1, -1, 0}}, {90, {0, -1, 1, 0}}, {180, {-1, 0, 0, -1}}}) {
        for (const char* container : {"mp4", "mov"}) {
            auto reader = readerOf(makeClip({.container = container, .rotation = expected.rotation}));
            const auto transform = reader.firstVideoTrackTransform();
            ASSERT_TRUE(transform);
            EXPECT_EQ(*transform, expected.transform) << expected.rotation << " " << container;
        }
    }
    EXPECT_FALSE(readerOf(makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"}))
                     .firstVideoTrackTransform());
    EXPECT_FALSE(readerOf(makeClip({.pictures = {}, .container = "mp3", .codecs = "-c:a libmp3lame"}))
                     .firstVideoTrackTransform());
}

TEST(AssetReaderTest, DurationOfEveryContainer) {
    for (const char* container : {"mp4", "mov", "mkv", "avi", "ts", "mpg"}) {
        auto reader = readerOf(makeClip({.seconds = 2, .container = container, .codecs = noCodecs}));
        EXPECT_NEAR(reader.duration(), 2, 0.1) << container;
        EXPECT_EQ(reader.firstVideoTrackTransform(), AffineTransform{}) << container;
    }
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
    if (geteuid() != 0) {
        chmod(directory.file("empty.mp4").c_str(), 0);
        EXPECT_THROW(readerOf(directory.file("empty.mp4")), PlatformError);
    }
}

} // namespace
} // namespace corvanta::test
