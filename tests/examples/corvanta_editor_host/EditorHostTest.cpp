#include "support/Display.hpp"

#include <QImage>

#include <gmock/gmock.h>

namespace corvanta {
namespace {

namespace fs = std::filesystem;
using test::makeClip;
using test::Program;
using testing::HasSubstr;

class EditorHostTest : public testing::Test {
  protected:
    test::TemporaryDirectory directory_;
    const Program::Options options_{.environment = {{"XDG_DATA_HOME", directory_.file("data")}}};
};

/// How many squares of 8 by 8 pixels differ in their mean colour.
int differingSquares(const std::string& leftFile, const std::string& rightFile) {
    const auto squares = [](const std::string& file) {
        const QImage image(QString::fromStdString(file));
        return image.scaled(image.size() / 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    };
    const QImage left = squares(leftFile);
    const QImage right = squares(rightFile);
    EXPECT_FALSE(left.isNull());
    EXPECT_EQ(left.size(), right.size());
    int differing = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QColor l = left.pixelColor(x, y);
            const QColor r = right.pixelColor(x, y);
            const int distance = std::max({std::abs(l.red() - r.red()), std::abs(l.green() - r.green()),
                                           std::abs(l.blue() - r.blue())});
            differing += distance > 40 ? 1 : 0;
        }
    }
    return differing;
}

// Each state in a real window, as a GPU draws it, against the same without a screen.
TEST_F(EditorHostTest, LooksAlikeOnEveryRenderer) {
    const std::string clip = makeClip({.seconds = 3, .pictures = {{.source = "color=c=steelblue"}}});
    const auto host = [&](const std::string& folder) {
        return Program(CORVANTA_EDITOR_HOST, {clip, "--screenshot", directory_.file(folder)}, options_);
    };
    // Side by side: both wait for pictures to stand still, most of the time.
    Program software = host("software");
    {
        const test::Display display;
        Program opengl = host("opengl");
        ASSERT_EQ(opengl.wait(), 0) << opengl.errors();
    }
    ASSERT_EQ(software.wait(), 0) << software.errors();
    std::set<std::string> states;
    for (const auto& entry : fs::directory_iterator(directory_.file("software"))) {
        const std::string state = entry.path().filename();
        states.insert(state);
        // The playhead stands where playing has come to, in either picture: a line of nine squares.
        const int allowed = state == "playing.png" ? 4 + 2 * 9 : 4;
        EXPECT_LE(differingSquares(entry.path(), directory_.file("opengl/" + state)), allowed) << state;
    }
    EXPECT_GE(states.size(), 11U);
}

TEST_F(EditorHostTest, RefusesWithTheReason) {
    test::writeFile(directory_.file("notes.mp4"), "no video");
    const std::string sound = makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"});
    for (const auto& [file, reason] : std::vector<std::pair<std::string, std::string>>{
             {directory_.file("missing.mp4"), "There is no file"},
             {directory_.path(), "is a folder"},
             {directory_.file("notes.mp4"), "can't be read as a video"},
             {sound, "no picture"}}) {
        test::ScopedVariable platform("QT_QPA_PLATFORM", "offscreen");
        Program host(CORVANTA_EDITOR_HOST, {file}, options_);
        EXPECT_EQ(host.wait(), 1) << file;
        EXPECT_THAT(host.errors(), HasSubstr(reason));
    }
}

} // namespace
} // namespace corvanta
