#include "support/Failure.hpp"
#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>

#include <gtest/gtest.h>

namespace corvanta::test {
namespace {

TEST(FileValidatorTest, TakesFilesByTheirExtension) {
    const CorvantaSdkVideoFileValidator validator;
    const TemporaryDirectory directory;
    for (const auto& [names, expected] :
         {std::pair("a_b.mp4 %41.MOV a.m4v a.mkv a.m4a sound.wav a.caf a.3g2 a.wmv", ""),
          {"text.txt a.jpg a.zip video.unknown mp4 .mp4 a. a.mp a.mp44", "invalidFile"}}) {
        for (const std::string& name : wordsOf(names)) {
            const URL url = URL::fromFilePath(directory.file(name));
            EXPECT_EQ(failureOf([&] { validator.validateFileAt(url); }), "notFoundVideo");
            writeFile(directory.file(name), "no media");
            EXPECT_EQ(failureOf([&] { validator.validateFileAt(url); }), expected) << name;
        }
    }
}

} // namespace
} // namespace corvanta::test
