#include "support/FakeExecutor.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <platform/Task.hpp>

#include <gtest/gtest.h>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;

/// A file name without its extension, and which operations take it.
struct PathForm {
    std::string name;
    bool information = true;
    bool thumbnailInput = true;
    bool thumbnailOutput = true;
};

std::vector<PathForm> pathForms() {
    return {
        {.name = "plain"},
        {.name = "with blanks  in it "},
        {.name = "it's 'quoted'"},
        {.name = "100%"},
        {.name = "100% sure"},
        {.name = "a?b"},
        {.name = "a#b"},
        {.name = "größe 動画 🎬"},
        {.name = "[a]{b}(c)<d>"},
        {.name = "line\nbreak\ttab"},
        {.name = "back\\slash$HOME`id`;*&|"},
        {.name = std::string(200, 'n')},
        {.name = "-y"},
        {.name = "a:b"},
        {.name = "a,b@c=d+e~!"},
        {.name = ".hidden"},
        {.name = "100%% %s"},
        // The command's text decodes an output that has been decoded before.
        {.name = "%20", .thumbnailOutput = false},
        {.name = "%25", .thumbnailOutput = false},
        // ffmpeg's image writer counts frames with it.
        {.name = "%d", .thumbnailOutput = false},
        {.name = "frame%03d", .thumbnailOutput = false},
        // A double quote ends the word.
        {.name = "double\"quote", .information = false, .thumbnailOutput = false},
        {.name = "\" -y \"", .information = false, .thumbnailOutput = false},
        // A URL's text decodes to UTF-8 or not at all.
        {.name = "latin\xfc", .information = false},
        {.name = "\xff%20", .information = false},
    };
}

class PathFormsTest : public testing::TestWithParam<PathForm> {
  protected:
    PathFormsTest() {
        FFmpegKitConfig::setLogLevel("quiet");
        fs::create_directory(directory_.path() / "in");
        fs::create_directory(directory_.path() / "out");
        // What a misread name could mean.
        for (const char* bystander :
             {"b.jpg", " .jpg", "%.jpg", "1.jpg", "0.jpg", "frame001.jpg", "double", "y.jpg", "%41.jpg"}) {
            writeFile(directory_.file(std::string("out/") + bystander), "bystander");
        }
        fs::copy_file(makeClip({}), input());
        before_ = contents();
    }

    std::string input() const { return directory_.file("in/" + GetParam().name + ".mp4"); }
    std::string output() const { return directory_.file("out/" + GetParam().name); }

    std::map<std::string, std::string> contents() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(directory_.path())) {
            if (entry.is_regular_file()) {
                files[entry.path()] = readFile(entry.path());
            }
        }
        return files;
    }

    static std::string thumbnail(const std::string& from, const std::string& to) {
        return outcomeOf([&] {
            const CorvantaSdkVideoFile file(URL::fromFilePath(from));
            const auto location = CorvantaSdkVideoFileDescriptor::custom(parseablePath(to));
            const auto result = runBlocking(CorvantaSdkVideo->generateThumbnail(file, location, 0));
            EXPECT_EQ(result.generatedThumbnailURL.path(), to + ".jpg");
        });
    }

    RecordedLog log_;
    TemporaryDirectory directory_;
    std::map<std::string, std::string> before_;
};

TEST_P(PathFormsTest, Information) {
    EXPECT_EQ(outcomeOf([this] {
                  const std::vector<CorvantaSdkVideoFile> files = {
                      CorvantaSdkVideoFile(URL::fromFilePath(input()))};
                  const auto information = runBlocking(CorvantaSdkVideo->getVideosInformation(files));
                  EXPECT_EQ(information.at(0).videoSize, (VideoSize{160, 120}));
              }),
              GetParam().information ? "done" : "getInformationFailed");
    EXPECT_EQ(contents(), before_);
}

TEST_P(PathFormsTest, ThumbnailInput) {
    const std::string plain = directory_.file("out/made");
    EXPECT_EQ(thumbnail(input(), plain), GetParam().thumbnailInput ? "done" : "thumbnailGenerationFailed");
    fs::remove(plain + ".jpg");
    EXPECT_EQ(contents(), before_);
}

TEST_P(PathFormsTest, ThumbnailOutput) {
    const std::string clip = makeClip({});
    for (const bool replacing : {false, true}) {
        if (replacing) {
            writeFile(output() + ".jpg", "older");
        }
        if (GetParam().thumbnailOutput) {
            EXPECT_EQ(thumbnail(clip, output()), "done");
            EXPECT_EQ(readFile(output() + ".jpg").substr(0, 3), "\xff\xd8\xff");
        } else {
            EXPECT_EQ(thumbnail(clip, output()), "thumbnailGenerationFailed");
            EXPECT_EQ(readFile(output() + ".jpg"), replacing ? "older" : "");
        }
        fs::remove(output() + ".jpg");
        EXPECT_EQ(contents(), before_);
    }
}

// Relative outputs stand alone in front of ffmpeg, where a dash means an option and a colon a protocol.
TEST(RelativePathFormsTest, ThumbnailOutput) {
    const RecordedLog log;
    FFmpegKitConfig::setLogLevel("quiet");
    const TemporaryDirectory directory;
    const std::string clip = makeClip({});
    const auto before = fs::current_path();
    fs::current_path(directory.path());
    for (const auto& [path, expected] :
         std::map<std::string, std::string>{{"plain name", "done"},
                                            {"./-y", "done"},
                                            {"./a:b", "done"},
                                            {"-y", "thumbnailGenerationFailed"},
                                            {"file:other", "thumbnailGenerationFailed"},
                                            {"pipe:1", "thumbnailGenerationFailed"}}) {
        EXPECT_EQ(outcomeOf([&, text = parseablePath(path)] {
                      runBlocking(CorvantaSdkVideo->generateThumbnail(
                          CorvantaSdkVideoFile(URL::fromFilePath(clip)),
                          CorvantaSdkVideoFileDescriptor::custom(text), 0));
                  }),
                  expected)
            << path;
        EXPECT_EQ(fs::remove(path + ".jpg"), expected == "done");
        EXPECT_TRUE(fs::is_empty(directory.path())) << path;
    }
    fs::current_path(before);
}

INSTANTIATE_TEST_SUITE_P(Names, PathFormsTest, testing::ValuesIn(pathForms()),
                         [](const auto& form) { return std::to_string(form.index); });

} // namespace
} // namespace corvanta::test
