#include "support/Failure.hpp"
#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>

#include <gtest/gtest.h>

#include <map>

namespace corvanta::test {
namespace {

TEST(FileValidatorTest, TakesFilesByTheirExtension) {
    const CorvantaSdkVideoFileValidator validator;
    const TemporaryDirectory directory;
    for (const auto& [name, expected] : std::map<std::string, std::string>{{"a b.mp4", ""},
                                                                           {"%41.MOV", ""},
                                                                           {"sound.wav", ""},
                                                                           {"text.txt", "invalidFile"},
                                                                           {"video.unknown", "invalidFile"},
                                                                           {"mp4", "invalidFile"},
                                                                           {".mp4", "invalidFile"}}) {
        const URL url = URL::fromFilePath(directory.file(name));
        EXPECT_EQ(failureOf([&] { validator.validateFileAt(url); }), "notFoundVideo");
        writeFile(directory.file(name), "no media");
        EXPECT_EQ(failureOf([&] { validator.validateFileAt(url); }), expected) << name;
    }
}

} // namespace
} // namespace corvanta::test
