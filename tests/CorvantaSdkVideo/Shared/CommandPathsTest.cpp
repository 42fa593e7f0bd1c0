#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>
#include <CorvantaSdkVideo/TracksManager/TracksManager.hpp>

#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <platform/Directories.hpp>

#include <gmock/gmock.h>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

URL urlOf(const std::string& path) {
    return path.starts_with('/') ? URL::fromFilePath(path) : *URL::parse(parseablePath(path));
}

/// Works on the file at one path, and writes to another that is given without its extension.
struct Operation {
    std::string name;
    std::string extension;
    std::function<void(const CorvantaSdkVideoFile& input, const CorvantaSdkVideoFileDescriptor& output)> run;
};

template <typename Builder>
void process(const Builder& builder, const CorvantaSdkVideoFileDescriptor& output) {
    EXPECT_EQ(runBlocking(builder.build()->process()).videoURL, output.url("mp4"));
}

const std::vector<Operation>& operations() {
    using File = CorvantaSdkVideoFile;
    using Place = CorvantaSdkVideoFileDescriptor;
    static const TracksManager tracks;
    static CorvantaSdkVideoEditorImplementation editor;
    static const std::vector<Operation> all = {
        {"info", "",
         [](const File& in, const Place&) {
             const auto information = runBlocking(CorvantaSdkVideo->getVideosInformation({in})).at(0);
             EXPECT_EQ(information.url, in.url());
             EXPECT_EQ(information.path, in.url().absoluteString());
         }},
        {"canConcat", "",
         [](const File& in, const Place&) {
             EXPECT_TRUE(runBlocking(CorvantaSdkVideo->canConcat({in, in})));
         }},
        {"trimmer's strip", "",
         [](const File& in, const Place&) {
             const URL image = runBlocking(editor.getThumbnailForVideo(in.url(), 0.2, 40, 30));
             EXPECT_TRUE(fs::remove(image.path()));
         }},
        {"concat", "mp4",
         [](const File& in, const Place& out) {
             process(CorvantaSdkVideo->ConcatBuilder({in, in}, out), out);
         }},
        {"merge", "mp4",
         [](const File& in, const Place& out) {
             process(CorvantaSdkVideo->MergeBuilder({in, in}, out), out);
         }},
        {"encode", "mp4",
         [](const File& in, const Place& out) { process(CorvantaSdkVideo->EncodingBuilder(in, out), out); }},
        {"thumbnail", "jpg",
         [](const File& in, const Place& out) {
             const auto made = runBlocking(CorvantaSdkVideo->generateThumbnail(in, out, 0));
             EXPECT_EQ(made.generatedThumbnailURL, out.url("jpg"));
         }},
        {"edit", "mp4",
         [](const File& in, const Place& out) {
             const auto made = runBlocking(editor.edit({in.url(), *out.url("mp4"), 0, 0.4}));
             EXPECT_EQ(made.editedVideoURL, out.url("mp4"));
         }},
        {"clean", "mp4",
         [](const File& in, const Place& out) {
             const auto engine = CorvantaSdkVideo->engine();
             EXPECT_EQ(runBlocking(engine->clearNoiseForFile(in, out)).fileURL, out.url("mp4"));
         }},
        {"add sound", "mp4",
         [](const File& in, const Place& out) {
             runBlocking(tracks.addAudioTrack(in.url(), *out.url("mp4"), 200));
         }},
        {"remove picture", "mp4",
         [](const File& in, const Place& out) {
             runBlocking(tracks.removeVideoTrack(in.url(), *out.url("mp4")));
         }},
        {"remove sound", "mp4",
         [](const File& in, const Place& out) {
             runBlocking(tracks.removeAudioTrack(in.url(), *out.url("mp4")));
         }},
    };
    return all;
}

/// The module's folders have names that hardly a command can hold, too.
class CommandPathsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        static const TemporaryDirectory home;
        setenv("XDG_DATA_HOME", home.file("it's \"my\" %41 {output} d").c_str(), 1);
        setenv("XDG_CACHE_HOME", home.file("cache").c_str(), 1);
        FFmpegKitConfig::setLogLevel("error");
    }

    CommandPathsTest() { fs::create_directory(scratch_.path() / "links"); }

    std::string failureOf(const Operation& operation, const std::string& input,
                          const std::string& output) const {
        return test::failureOf([&] {
            operation.run(CorvantaSdkVideoFile(urlOf(input)),
                          CorvantaSdkVideoFileDescriptor::custom(parseablePath(output)));
        });
    }

    std::vector<std::string> leftOver() const {
        return namesIn({scratch_.path() / "links", Directories::documents().path()});
    }

    const TemporaryDirectory scratch_;
    const ScopedVariable links_{"XDG_RUNTIME_DIR", scratch_.file("links")};
    const RecordedLog log_;
    const std::string clip_ = makeClip({.seconds = 0.5});
};

TEST_F(CommandPathsTest, AnyNameServesEveryOperation) {
    const auto before = fs::current_path();
    for (const std::string name :
         {"\" -y it's \"quoted\" %20", "100%% %s frame%03d {trimStart} {outputFile}",
          "line\nbreak\ttab \\$HOME`id`;*&|", "größe 動画 🎬 a?b#c [x]", "\xff no UTF-8 %20", "-y", "a:b"}) {
        // A folder of that name, and a relative path where ffmpeg would take the name for something else.
        const TemporaryDirectory directory;
        const bool isRelative = name.size() < 4;
        const std::string folder = isRelative ? "" : directory.file(name) + "/";
        if (isRelative) {
            fs::current_path(directory.path());
        } else {
            fs::create_directory(folder);
        }
        fs::copy_file(clip_, folder + name + ".mp4");
        for (const Operation& operation : operations()) {
            SCOPED_TRACE(operation.name + " " + name);
            const std::string output = folder + name + name;
            const std::string file = output + "." + operation.extension;
            writeFile(file, "older");
            EXPECT_EQ(failureOf(operation, folder + name + ".mp4", output), "");
            EXPECT_EQ(readFile(file) == "older", operation.extension.empty());
            fs::remove(file);
            EXPECT_THAT(namesIn({isRelative ? "." : folder}), testing::ElementsAre(name + ".mp4"));
            EXPECT_THAT(leftOver(), IsEmpty());
        }
        EXPECT_EQ(readFile(folder + name + ".mp4"), readFile(clip_));
    }
    fs::current_path(before);
}

TEST_F(CommandPathsTest, NoOperationWritesOverItsInput) {
    const std::string input = scratch_.file("input.mp4");
    fs::copy_file(clip_, input);
    const std::vector<std::string> nameless = {scratch_.file(std::string("a\0b", 3))};
    for (const Operation& operation : operations()) {
        std::vector<std::string> outputs = nameless;
        for (const std::string link : {"hard", "soft", "so\"ft"}) {
            outputs.push_back(scratch_.file(link));
            const std::string file = outputs.back() + "." + operation.extension;
            link == "hard" ? fs::create_hard_link(input, file) : fs::create_symlink(input, file);
        }
        for (const std::string& output : outputs) {
            SCOPED_TRACE(operation.name + " " + output);
            EXPECT_EQ(failureOf(operation, input, output).empty(), operation.extension.empty());
            EXPECT_EQ(readFile(input), readFile(clip_));
            fs::remove(output + "." + operation.extension);
        }
        EXPECT_THAT(leftOver(), IsEmpty());
    }
}

TEST_F(CommandPathsTest, AFailedRunLeavesWhatItWroteButNotInPlaceOfAnOlderFile) {
    const FakeProgram half("CORVANTA_FFMPEG", "for last; do :; done\necho half >\"$last\"\nexit 1\n");
    const std::string output = scratch_.file("\"quoted\"");
    const auto edit = std::ranges::find(operations(), "edit", &Operation::name);
    writeFile(output + ".mp4", "older");
    for (const std::string expected : {"older", "half\n"}) {
        EXPECT_EQ(failureOf(*edit, clip_, output), "trimFailed");
        EXPECT_EQ(readFile(output + ".mp4"), expected);
        fs::remove(output + ".mp4");
    }
    EXPECT_THAT(namesIn({scratch_.path()}), testing::ElementsAre("links"));
}

} // namespace
} // namespace corvanta::test
