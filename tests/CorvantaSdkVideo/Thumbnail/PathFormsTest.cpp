#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <gtest/gtest.h>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;

/// A file name without its extension, and which operations take it.
struct PathForm {
    std::string name;
    bool information = true;
    bool thumbnailOutput = true;
};

const std::vector<PathForm> pathForms = {
    {"with blanks  in it "},
    {"it's 'quoted'"},
    {"100% sure"},
    {"a?b#c"},
    {"größe 動画 🎬"},
    {"[a]{b}(c)<d>,b@c=d+e~!"},
    {"line\nbreak\ttab"},
    {"back\\slash$HOME`id`;*&|"},
    {std::string(200, 'n')},
    {"-y"},
    {".hidden"},
    {"100%% %s"},
    // The command's text decodes an output that has been decoded before.
    {"%20", true, false},
    // ffmpeg's image writer counts frames with it.
    {"frame%03d", true, false},
    // A double quote ends the word.
    {"\" -y \"", false, false},
    // A URL's text decodes to UTF-8 or not at all.
    {"\xff%20", false},
};

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
    return failureOf([&] {
        const CorvantaSdkVideoFile file(URL::fromFilePath(from));
        const auto location = CorvantaSdkVideoFileDescriptor::custom(parseablePath(to));
        const auto result = runBlocking(CorvantaSdkVideo->generateThumbnail(file, location, 0));
        EXPECT_EQ(result.generatedThumbnailURL.path(), to + ".jpg");
    });
}

TEST(PathFormsTest, InformationAndThumbnails) {
    const RecordedLog log;
    const std::string clip = makeClip({});
    for (const PathForm& form : pathForms) {
        SCOPED_TRACE(form.name);
        const Place place(form);
        const std::vector files = {CorvantaSdkVideoFile(URL::fromFilePath(place.input()))};
        EXPECT_EQ(failureOf([&] {
                      const auto information = runBlocking(CorvantaSdkVideo->getVideosInformation(files));
                      EXPECT_EQ(information.at(0).videoSize, (VideoSize{160, 120}));
                  }),
                  form.information ? "" : "getInformationFailed");
        EXPECT_EQ(thumbnail(place.input(), place.plainOutput()), "");
        fs::remove(place.plainOutput() + ".jpg");
        EXPECT_TRUE(place.isUntouched());

        const std::string output = place.output() + ".jpg";
        const std::string failure = form.thumbnailOutput ? "" : "thumbnailGenerationFailed";
        for (const std::string older : {"", "older"}) {
            if (!older.empty()) {
                writeFile(output, older);
            }
            EXPECT_EQ(thumbnail(clip, place.output()), failure);
            EXPECT_EQ(readFile(output).substr(0, failure.empty() ? 3 : 5),
                      failure.empty() ? "\xff\xd8\xff" : older);
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
         std::map<std::string, std::string>{{"plain name", ""},
                                            {"./-y", ""},
                                            {"./a:b", ""},
                                            {"-y", "thumbnailGenerationFailed"},
                                            {"file:other", "thumbnailGenerationFailed"},
                                            {"pipe:1", "thumbnailGenerationFailed"}}) {
        EXPECT_EQ(thumbnail(clip, path), expected) << path;
        EXPECT_EQ(fs::remove(path + ".jpg"), expected.empty());
        EXPECT_TRUE(fs::is_empty(directory.path())) << path;
    }
    fs::current_path(before);
}

} // namespace
} // namespace corvanta::test
