#include "support/Failure.hpp"
#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace corvanta::test {
namespace {

TEST(FileValidatorTest, Checks) {
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
    for (const auto& [component, expected] : std::vector<std::pair<std::optional<double>, std::string>>{
             {std::nullopt, ""},
             {128.0, ""},
             {129.5, ""},
             {127.5, "invalidResolution"},
             {std::nextafter(128.0, 0), "invalidResolution"},
             {-128.0, "invalidResolution"},
             {std::nan(""), "invalidResolution"}}) {
        EXPECT_EQ(failureOf([&, value = component] { validator.validateResolution(value); }), expected);
    }
    const URL there = URL::fromFilePath(directory.file("a b.mp4"));
    const URL missing = URL::fromFilePath(directory.file("missing.mp4"));
    struct Existence {
        std::vector<URL> videos;
        std::size_t minimum;
        std::string expected;
    };
    for (const Existence& existence :
         {Existence{{}, 0, ""},
          {{}, 1, "invalidInputFiles(notEnoughVideos)"},
          {{missing}, 2, "invalidInputFiles(notEnoughVideos)"},
          {{there, there}, 2, ""},
          {{there, missing}, 2, "invalidInputFiles(inputContainsNonExistingFiles)"}}) {
        EXPECT_EQ(failureOf([&] { validator.validateVideosExistence(existence.videos, existence.minimum); }),
                  existence.expected);
    }
    EXPECT_EQ(failureOf([&] { validator.validateVideosExistence({}); }),
              "invalidInputFiles(notEnoughVideos)");
}

} // namespace
} // namespace corvanta::test
