#include "CorvantaSdkVideo/Editor/ScreenFixture.hpp"
#include "support/DecodedMedia.hpp"
#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Editor/Playhead.hpp>
#include <CorvantaSdkVideo/Editor/StripZoom.hpp>
#include <CorvantaSdkVideo/Editor/Waveform.hpp>

#include <platform/Directories.hpp>

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr double stripWidth = 343;

class EditorAidsTest : public test::ScreenFixture {
  protected:
    EditorRoot& view() const { return *qobject_cast<EditorRoot*>(view_.get()); }
    void presentAndRead(const std::string& clip = test::colourClip()) {
        present(clip);
        ASSERT_TRUE(isFileRead());
    }
    bool shows(const QColor& colour) {
        return eventually([&] {
            QQuickItem* const picture = block("VideoPlayer");
            const QColor shown = colourAt(picture, picture->boundingRect().center() + QPointF(-30, 0));
            return std::abs(shown.red() - colour.red()) + std::abs(shown.green() - colour.green()) +
                       std::abs(shown.blue() - colour.blue()) <
                   60;
        });
    }
    QPoint onStrip(double x) const {
        return block("ThumbnailsListView")->mapToScene(QPointF(x, 32)).toPoint();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window_, key, modifiers);
    }
    std::string message(const char* question) const {
        return block(question)->property("message").toString().toStdString();
    }
};

// Pictures that refer to later ones lose their first group when they are copied.
TEST_F(EditorAidsTest, AsksBeforeCopyingLosesAnythingAndKeepsAPhonesClipUpright) {
    const std::string codecs = "-c:v libx264 -preset ultrafast -g 30 -pix_fmt yuv420p -c:a aac -bf ";
    const auto phone = [&](const char* bFrames) {
        return test::makeClip({.seconds = 3, .codecs = codecs + bFrames, .rotation = -90});
    };
    for (const auto& [name, clip, trimTo, answer, loss, frames] :
         std::vector<std::tuple<const char*, std::string, double, const char*, std::string, std::size_t>>{
             {"nothing to ask", phone("0"), 0, "", "", 90},
             {"first group, exact", phone("2"), 0, "Exact", "A fast cut loses the first 1.0 s", 90},
             {"first group, fast", phone("2"), 0, "Fast", "A fast cut loses the first 1.0 s", 60},
             {"no picture, exact", phone("0"), 267, "Exact", "A fast cut keeps no picture", 23},
             {"late start, exact", phone("0"), 100, "Exact", "A fast cut starts the picture ", 66}}) {
        SCOPED_TRACE(name);
        results_.clear();
        presentAndRead(clip);
        if (trimTo > 0) {
            dragStrip(12, trimTo);
        }
        click("Continue");
        if (answer[0] != '\0') {
            ASSERT_TRUE(eventually([this] { return isShown("Back"); }));
            EXPECT_THAT(message("CutQuestion"), StartsWith(loss));
            EXPECT_EQ(isShown("Fast"), loss.find("no picture") == std::string::npos);
            EXPECT_THAT(
                control("Exact")->property("modelData").toMap().value("detail").toString().toStdString(),
                testing::MatchesRegex("about [0-9]+ s"));
            click("Back");
            EXPECT_TRUE(results_.empty());
            click("Continue");
            click(answer);
        }
        ASSERT_TRUE(isClosed());
        ASSERT_EQ(results_.size(), 1U);
        const std::string edited = results_.front().editedVideoURL->path();
        EXPECT_EQ(test::probed(edited).rotation(), -90);
        EXPECT_EQ(test::ffprobeNumbers(edited, "v", "packet=pts_time").size(), frames);
    }
}

TEST_F(EditorAidsTest, CancelsAnEditAndStays) {
    presentAndRead();
    ASSERT_TRUE(eventually([this] { return !model().isMakingThumbnails(); }));
    const test::FakeProgram ffmpeg("CORVANTA_FFMPEG", "touch " + folders_.file("edited.mp4") +
                                                          "; echo out_time_us=1000000; exec sleep 600");
    click("Continue");
    ASSERT_TRUE(eventually([this] { return block("EditProgress")->isVisible(); }));
    ASSERT_TRUE(eventually([this] { return std::filesystem::exists(folders_.file("edited.mp4")); }));
    click("Cancel");
    ASSERT_TRUE(eventually([this] { return !model().isTrimming(); }));
    EXPECT_FALSE(model().hasError());
    EXPECT_FALSE(std::filesystem::exists(folders_.file("edited.mp4")));
    EXPECT_TRUE(results_.empty());
    EXPECT_TRUE(isShown("Continue"));
}

TEST_F(EditorAidsTest, AsksBeforeItDiscardsChangesAndBringsTheWholeClipBack) {
    using Step = std::function<void()>;
    for (const auto& [name, change] :
         std::vector<std::pair<const char*, Step>>{{"trimmed", [this] { dragStrip(12, 100); }},
                                                   {"turned", [this] { model().rotateLeft(); }},
                                                   {"muted", [this] { model().muteVideo(); }}}) {
        SCOPED_TRACE(name);
        results_.clear();
        presentAndRead();
        change();
        window_->close();
        ASSERT_TRUE(eventually([this] { return isShown("Discard"); }));
        press(Qt::Key_Space);
        EXPECT_FALSE(isShown("Discard"));
        EXPECT_FALSE(model().isPlaying());
        if (isShown("Reset")) {
            EXPECT_EQ(block("KeptLength")->property("text").toString().toStdString(), "3.0 s");
            click("Reset");
            EXPECT_EQ(model().trimmerStart(), 0);
            EXPECT_EQ(model().stopAt(), model().videoDuration());
            EXPECT_FALSE(isShown("Reset"));
        } else {
            press(Qt::Key_Escape);
            click("Discard");
        }
        if (!model().hasChanges()) {
            press(Qt::Key_Escape);
        }
        ASSERT_TRUE(isClosed());
        ASSERT_EQ(results_.size(), 1U);
        EXPECT_EQ(results_.front().editedVideoURL, std::nullopt);
    }
}

TEST_F(EditorAidsTest, MovesThePlayheadByHandAndKeys) {
    presentAndRead();
    const double frame = 1.0 / 30;
    const auto expectAt = [this](double seconds) {
        EXPECT_NEAR(view().playhead()->seconds(), seconds, 0.002);
    };
    QTest::mouseClick(window_, Qt::LeftButton, {}, onStrip(240));
    expectAt(240 / stripWidth * 4);
    EXPECT_TRUE(shows(Qt::blue));
    dragStrip(110, 130);
    expectAt(130 / stripWidth * 4);
    EXPECT_TRUE(shows(Qt::green));
    EXPECT_TRUE(model().keepsAll());
    press(Qt::Key_Right, Qt::ShiftModifier);
    expectAt(130 / stripWidth * 4 + frame);
    press(Qt::Key_End);
    expectAt(4 - frame);
    press(Qt::Key_Home);
    expectAt(0);
    EXPECT_TRUE(shows(Qt::red));

    // While the end is moved its own picture shows.
    QTest::mousePress(window_, Qt::LeftButton, {}, onStrip(331));
    for (int x = 331; x >= 160; x -= 3) {
        QTest::mouseMove(window_, onStrip(x));
    }
    EXPECT_TRUE(shows(Qt::green));
    expectAt(model().stopAt() - frame);
    QTest::mouseRelease(window_, Qt::LeftButton, {}, onStrip(160));
    expectAt(0);
    EXPECT_TRUE(shows(Qt::red));
    press(Qt::Key_End);
    EXPECT_EQ(model().stopAt(), model().videoDuration()) << "the touched handle has the keys";
}

TEST_F(EditorAidsTest, DrawsTheSoundAndSaysWhereThereIsNone) {
    for (const auto& [clip, name] :
         {std::pair(test::colourClip(), "Waveform"), std::pair(test::makeClip({.sounds = {}}), "No sound")}) {
        presentAndRead(clip);
        click("Sound");
        QQuickItem* const sound = block("SoundPicture");
        ASSERT_TRUE(eventually([&] { return sound->opacity() == 1; }));
        if (model().hasSound()) {
            ASSERT_TRUE(eventually([this] { return !view().waveform()->picture().isEmpty(); }));
            EXPECT_TRUE(eventually([&] { return colourAt(sound, QPointF(100, 32)).lightness() > 200; }));
        } else {
            EXPECT_EQ(sound->property("isSilent"), true) << name;
        }
        click("Close");
        ASSERT_TRUE(isClosed());
    }
    // Pictures that were in the making when it was closed go when they are there.
    EXPECT_TRUE(eventually([] { return std::filesystem::is_empty(Directories::documents().path()); }));
}

TEST_F(EditorAidsTest, ZoomsInAroundAHandleThatIsHeldStill) {
    presentAndRead(test::makeClip({.seconds = 300, .pictures = {{.width = 64, .height = 64, .rate = "5"}}}));
    dragStrip(12, 100);
    const double start = model().trimmerStart();
    QTest::mousePress(window_, Qt::LeftButton, {}, onStrip(100));
    ASSERT_TRUE(eventually([this] { return view().stripZoom()->isActive(); }));
    QTest::mouseMove(window_, onStrip(110));
    EXPECT_NEAR(model().trimmerStart(), start + 30 * 10 / stripWidth, 0.01);
    EXPECT_NEAR(view().playhead()->seconds(), model().trimmerStart(), 0.01);
    EXPECT_TRUE(eventually([this] { return !view().stripZoom()->pictures().contains(QString()); }));
    QTest::mouseMove(window_, onStrip(340));
    EXPECT_NEAR(model().trimmerStart(), view().stripZoom()->from() + 30 * (340 - 12) / stripWidth, 0.1);
    QTest::mouseRelease(window_, Qt::LeftButton, {}, onStrip(340));
    EXPECT_FALSE(view().stripZoom()->isActive());
}

} // namespace
} // namespace corvanta
