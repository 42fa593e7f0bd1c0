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

/// A clip under the form's name, and files that a misread name could mean.
class Place {
  public:
    explicit Place(const PathForm& form) : form_(form) {
        FFmpegKitConfig::setLogLevel("quiet");
        fs::create_directory(directory_.path() / "in");
        fs::create_directory(directory_.path() / "out");
        for (const char* bystander :
             {"b.jpg", " .jpg", "%.jpg", "1.jpg", "0.jpg", "frame001.jpg", "double", "y.jpg", "%41.jpg"}) {
            writeFile(directory_.file(std::string("out/") + bystander), "bystander");
        }
        fs::copy_file(makeClip({}), input());
        before_ = contents();
    }

    std::string input() const { return directory_.file("in/" + form_.name + ".mp4"); }
    std::string output() const { return directory_.file("out/" + form_.name); }
    std::string plainOutput() const { return directory_.file("out/made"); }
    bool isUntouched() const { return contents() == before_; }

  private:
    std::map<std::string, std::string> contents() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(directory_.path())) {
            if (entry.is_regular_file()) {
                files[entry.path()] = readFile(entry.path());
            }
        }
        return files;
    }

    PathForm form_;
    TemporaryDirectory directory_;
    std::map<std::string, std::string> before_;
};

std::string thumbnail(const std::string& from, const std::string& to) {
    return outcomeOf([&] {
        const CorvantaSdkVideoFile file(URL::fromFilePath(from));
        const auto location = CorvantaSdkVideoFileDescriptor::custom(parseablePath(to));
        const auto result = runBlocking(CorvantaSdkVideo->generateThumbnail(file, location, 0));
        EXPECT_EQ(result.generatedThumbnailURL.path(), to + ".jpg");
    });
}

TEST(PathFormsTest, Information) {
    const RecordedLog log;
    for (const PathForm& form : pathForms()) {
        SCOPED_TRACE(form.name);
        const Place place(form);
        const std::vector<CorvantaSdkVideoFile> files = {
            CorvantaSdkVideoFile(URL::fromFilePath(place.input()))};
        EXPECT_EQ(outcomeOf([&] {
                      const auto information = runBlocking(CorvantaSdkVideo->getVideosInformation(files));
                      EXPECT_EQ(information.at(0).videoSize, (VideoSize{160, 120}));
                  }),
                  form.information ? "done" : "getInformationFailed");
        EXPECT_TRUE(place.isUntouched());
    }
}

TEST(PathFormsTest, ThumbnailInput) {
    const RecordedLog log;
    for (const PathForm& form : pathForms()) {
        SCOPED_TRACE(form.name);
        const Place place(form);
        EXPECT_EQ(thumbnail(place.input(), place.plainOutput()),
                  form.thumbnailInput ? "done" : "thumbnailGenerationFailed");
        fs::remove(place.plainOutput() + ".jpg");
        EXPECT_TRUE(place.isUntouched());
    }
}

TEST(PathFormsTest, ThumbnailOutput) {
    const RecordedLog log;
    const std::string clip = makeClip({});
    for (const PathForm& form : pathForms()) {
        SCOPED_TRACE(form.name);
        const Place place(form);
        const std::string output = place.output() + ".jpg";
        for (const bool replacing : {false, true}) {
            if (replacing) {
                writeFile(output, "older");
            }
            EXPECT_EQ(thumbnail(clip, place.output()),
                      form.thumbnailOutput ? "done" : "thumbnailGenerationFailed");
            const std::string kept = replacing ? "older" : "";
            EXPECT_EQ(readFile(output).substr(0, 3),
                      form.thumbnailOutput ? "\xff\xd8\xff" : kept.substr(0, 3));
            fs::remove(output);
            EXPECT_TRUE(place.isUntouched());
        }
    }
}

// Relative outputs stand alone in front of ffmpeg, where a dash means an option and a colon a protocol.
TEST(PathFormsTest, RelativeThumbnailOutput) {
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

} // namespace
} // namespace corvanta::test
