#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace corvanta::test {
namespace {

using Error = CorvantaSdkVideoError;

template <typename Check>
std::string outcome(Check check) {
    try {
        check();
        return "passes";
    } catch (const Error& error) {
        return error.what();
    }
}

TEST(FileValidatorTest, Checks) {
    const CorvantaSdkVideoFileValidator validator;
    const TemporaryDirectory directory;
    for (const auto& [name, expected] : std::map<std::string, std::string>{{"a b.mp4", "passes"},
                                                                           {"%41.MOV", "passes"},
                                                                           {"sound.wav", "passes"},
                                                                           {"text.txt", "invalidFile"},
                                                                           {"video.unknown", "invalidFile"},
                                                                           {"mp4", "invalidFile"},
                                                                           {".mp4", "invalidFile"}}) {
        const URL url = URL::fromFilePath(directory.file(name));
        EXPECT_EQ(outcome([&] { validator.validateFileAt(url); }), "notFoundVideo");
        writeFile(directory.file(name), "no media");
        EXPECT_EQ(outcome([&] { validator.validateFileAt(url); }), expected) << name;
    }
    for (const auto& [component, expected] : std::vector<std::pair<std::optional<double>, std::string>>{
             {std::nullopt, "passes"},
             {128.0, "passes"},
             {129.5, "passes"},
             {1e300, "passes"},
             {127.5, "invalidResolution"},
             {std::nextafter(128.0, 0), "invalidResolution"},
             {0.0, "invalidResolution"},
             {-128.0, "invalidResolution"},
             {std::nan(""), "invalidResolution"}}) {
        EXPECT_EQ(outcome([&, value = component] { validator.validateResolution(value); }), expected);
    }
    const URL there = URL::fromFilePath(directory.file("a b.mp4"));
    const URL missing = URL::fromFilePath(directory.file("missing.mp4"));
    struct Existence {
        std::vector<URL> videos;
        std::size_t minimum;
        std::string expected;
    };
    for (const Existence& existence :
         {Existence{{}, 0, "passes"},
          {{}, 1, "invalidInputFiles(notEnoughVideos)"},
          {{missing}, 2, "invalidInputFiles(notEnoughVideos)"},
          {{there}, 1, "passes"},
          {{there, there}, 2, "passes"},
          {{there, missing}, 2, "invalidInputFiles(inputContainsNonExistingFiles)"}}) {
        EXPECT_EQ(outcome([&] { validator.validateVideosExistence(existence.videos, existence.minimum); }),
                  existence.expected);
    }
    EXPECT_EQ(outcome([&] { validator.validateVideosExistence({}); }), "invalidInputFiles(notEnoughVideos)");
}

} // namespace
} // namespace corvanta::test
