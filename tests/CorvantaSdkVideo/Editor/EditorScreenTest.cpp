#include "CorvantaSdkVideo/Editor/ScreenFixture.hpp"
#include "support/DecodedMedia.hpp"
#include "support/Processes.hpp"

#include <platform/AssetReader.hpp>

#include <QAccessible>
#include <gmock/gmock.h>

namespace corvanta {
namespace {

using test::colourClip;
using testing::Contains;

class EditorScreenTest : public test::ScreenFixture {
  protected:
    // The clip's colour, beside the play button.
    bool shows(const QColor& colour, QPointF fromCenter = QPointF(-30, 0)) {
        QQuickItem* const picture = block("VideoPlayer");
        return eventually([&] {
            const QColor shown = colourAt(picture, picture->boundingRect().center() + fromCenter);
            return test::isNear({1.0 * shown.red(), 1.0 * shown.green(), 1.0 * shown.blue()},
                                {1.0 * colour.red(), 1.0 * colour.green(), 1.0 * colour.blue()}, 40);
        });
    }
    QString text(const char* block_) const {
        QStringList texts;
        for (QQuickItem* const item : test::itemsBelow(block(block_))) {
            if (item->isVisible() && item->property("text").isValid()) {
                texts += item->property("text").toString();
            }
        }
        return texts.join(QStringLiteral(" | "));
    }
};

TEST_F(EditorScreenTest, EditsAVideoFromEndToEnd) {
    present();
    ASSERT_TRUE(isFileRead());
    EXPECT_TRUE(shows(Qt::red)) << "the first frame";
    EXPECT_TRUE(shows(Qt::white, QPointF(30, 0)));

    dragStrip(12, 100);
    EXPECT_TRUE(shows(Qt::green)) << "what the left edge stands on";
    dragStrip(331, 228);
    dragStrip(164, 176);
    EXPECT_EQ(model().trimmerXOffset(), 88 + 12);
    EXPECT_EQ(model().trimmerSize().width(), 240 - 88);
    EXPECT_EQ(text("TrimmerRange"), "00:01 - 00:02");
    QQuickItem* const strip = block("ThumbnailsListView");
    EXPECT_EQ(colourAt(strip, QPointF(100 + 4, 32)).rgb(), CorvantaColor::ambar.rgb()) << "the left handle";
    EXPECT_EQ(colourAt(strip, QPointF(175, 2)).rgb(), CorvantaColor::ambar.rgb()) << "the upper bar";
    EXPECT_NE(colourAt(strip, QPointF(96, 32)).rgb(), CorvantaColor::ambar.rgb());

    click("Sound");
    EXPECT_FALSE(strip->isVisible() && strip->isEnabled());
    click("Mute");
    EXPECT_EQ(model().videoPlayer().volume(), 0.0F);
    QQuickItem* const mute = control("Unmute");
    EXPECT_TRUE(
        eventually([&] { return colourAt(mute, QPointF(24, 4)).rgb() == CorvantaColor::ambar.rgb(); }));
    click(mute);
    EXPECT_EQ(model().videoPlayer().volume(), 1.0F);
    QQuickItem* const bar = mute->parentItem()->childItems().constFirst();
    drag(bar, QPointF(24, 10), QPointF(24, 96));
    EXPECT_EQ(model().volumeHeight(), 96);
    EXPECT_TRUE(eventually([&] { return colourAt(bar, QPointF(24, 100)).rgb() == qRgb(255, 255, 255); }));
    EXPECT_EQ(colourAt(bar, QPointF(24, 92)).rgb(), CorvantaColor::gray.rgb());

    click("Rotation");
    for (int turn = 0; turn < 3; ++turn) {
        click("Rotate right");
    }
    EXPECT_EQ(model().videoRotation(), 270);
    EXPECT_TRUE(shows(Qt::white, QPointF(0, -30))) << "the right half is the upper one now";
    EXPECT_TRUE(shows(Qt::green, QPointF(0, 30)));

    click(block("CorvantaSdkVideoPlayer"));
    EXPECT_TRUE(model().isPlaying());
    EXPECT_FALSE(isShown("Play"));
    ASSERT_TRUE(eventually([this] { return model().didFinishPlaying(); }));
    EXPECT_TRUE(isShown("Play"));
    EXPECT_TRUE(shows(Qt::blue, QPointF(0, 30))) << "the range's end";

    const double length = model().stopAt() - model().trimmerStart();
    click("Continue");
    click("Fast");
    EXPECT_TRUE(block("ProgressSpinner")->isVisible());
    EXPECT_FALSE(isShown("Continue"));
    ASSERT_TRUE(eventually([this] { return !results_.empty(); }));
    EXPECT_TRUE(window_ == nullptr || !window_->isVisible())
        << "the answer comes after the window has closed";
    ASSERT_TRUE(isClosed());
    const URL edited = URL::fromFilePath(folders_.file("edited.mp4"));
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().editedVideoURL.value_or(URL()).path(), edited.path());
    EXPECT_NEAR(AssetReader(edited).duration(), length, 0.4);
    EXPECT_EQ(test::probed(edited.path()).rotation(), 90);
    EXPECT_NEAR(test::decodedSound(edited.path()).amplitude(450, 1) /
                    test::decodedSound(colourClip()).amplitude(450, 1),
                0.5, 0.1);
}

TEST_F(EditorScreenTest, EndsADragWhereThePointerIsHoweverFastItWas) {
    present();
    ASSERT_TRUE(isFileRead());
    const auto expectEdges = [this](double left, double right) {
        EXPECT_NEAR(model().leftEdgePosition(), left, 0.02);
        EXPECT_NEAR(model().rightEdgePosition(), right, 0.02);
    };
    for (const int steps : {1, 3, 60}) {
        SCOPED_TRACE(steps);
        dragStrip(28, 250, steps);
        expectEdges(250, 331);
        dragStrip(250, 5, steps);
        expectEdges(12, 331);
        dragStrip(331, 80, steps);
        expectEdges(12, 80);
        dragStrip(80, 340, steps);
        expectEdges(12, 331);
        dragStrip(28, 331, steps);
        EXPECT_NEAR(model().leftEdgePosition(), 331 - 64, 2.02);
        dragStrip(model().leftEdgePosition(), 2, steps);
        expectEdges(12, 331);
    }
    QTest::keyClick(window_, Qt::Key_Left);
    EXPECT_EQ(model().trimmerStart(), 0);
}

TEST_F(EditorScreenTest, SaysWhatIsWrongWithAFile) {
    const std::string sound = test::makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"});
    for (const auto& [file, notice, isEditable] :
         {std::tuple(folders_.make("notes.mp4"), "This file can't be read as a video.", false),
          std::tuple(sound, "There is no picture in this file.", true)}) {
        present(file);
        ASSERT_TRUE(eventually([this] { return !model().notice().isEmpty(); }));
        EXPECT_EQ(text("VideoPlayer"), notice);
        EXPECT_EQ(isShown("Continue"), isEditable);
        click("Close");
        ASSERT_TRUE(isClosed());
    }
}

TEST_F(EditorScreenTest, LeavesWithoutAnEditAtEveryPoint) {
    const auto byButton = [this] {
        click("Close");
        if (isShown("Discard")) {
            click("Discard");
        }
    };
    const auto byKey = [this] { QTest::keyClick(window_, Qt::Key_Escape); };
    const auto byWindow = [this] { window_->close(); };
    using Step = std::function<void()>;
    for (const auto& [name, reach, leave] : std::vector<std::tuple<const char*, Step, Step>>{
             {"at once", [] {}, byKey},
             {"trimmed", [this] { dragStrip(12, 100); }, byButton},
             {"while it plays", [this] { click("Play"); }, byWindow},
             {"in another tab", [this] { click("Sound"); }, byKey}}) {
        SCOPED_TRACE(name);
        results_.clear();
        present();
        reach();
        leave();
        leave();
        ASSERT_TRUE(isClosed());
        EXPECT_THAT(log_.take(), Contains("info event_video_edit: Close Edit Video Screen"));
        ASSERT_EQ(results_.size(), 1U);
        EXPECT_EQ(results_.front().editedVideoURL, std::nullopt);
    }
    EXPECT_FALSE(std::filesystem::exists(folders_.file("edited.mp4")));
}

TEST_F(EditorScreenTest, ShowsAFailureAndComesBackWithTheSameEdit) {
    present();
    ASSERT_TRUE(isFileRead());
    ASSERT_TRUE(eventually([this] { return !model().thumbnails().back().isNull(); }));
    dragStrip(12, 100);
    click("Rotation");
    click("Rotate left");
    std::optional<test::FakeProgram> ffmpeg(std::in_place, "CORVANTA_FFMPEG",
                                            "while [ ! -e \"$here/go\" ]; do sleep 0.02; done; exit 1");
    click("Continue");
    click("Fast");
    click(block("ControlButtons")->childItems().constFirst());
    QTest::keyClick(window_, Qt::Key_Escape);
    window_->close();
    test::writeFile(ffmpeg->file("go"), "");
    ASSERT_TRUE(eventually([this] { return model().hasError(); }));
    EXPECT_EQ(text("ErrorView"),
              "Error | An error occurred while editing the video. Please try again. | ACCEPT");
    EXPECT_FALSE(isShown("Continue"));

    click("Accept");
    EXPECT_TRUE(isShown("Continue"));
    EXPECT_EQ(model().trimmerXOffset(), 88);
    EXPECT_EQ(model().videoRotation(), -90);
    EXPECT_TRUE(results_.empty());
    ffmpeg.reset();
    click("Continue");
    click("Fast");
    ASSERT_TRUE(isClosed());
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_NE(results_.front().editedVideoURL, std::nullopt);
}

TEST_F(EditorScreenTest, AsksForALogin) {
    test::RecordedLog loggedOut(false);
    present();
    EXPECT_THAT(loggedOut.take(), Contains("info event_video_edit_screen_init: Init edit screen called"));
    EXPECT_EQ(text("UnauthenticatedView"), "Error | Authentication required | ACCEPT");
    EXPECT_FALSE(isShown("Continue"));
    EXPECT_EQ(model().videoDuration(), 0);
    QTest::keyClick(window_, Qt::Key_Return);
    ASSERT_TRUE(isClosed());
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().editedVideoURL, std::nullopt);
}

TEST_F(EditorScreenTest, IsWorkedByKeysAlone) {
    present();
    ASSERT_TRUE(isFileRead());
    const auto press = [this](Qt::Key key, int times = 1) {
        for (int time = 0; time < times; ++time) {
            QTest::keyClick(window_, key);
        }
    };
    const auto focused = [this] {
        return QAccessible::queryAccessibleInterface(window_->activeFocusItem())
            ->text(QAccessible::Name)
            .toStdString();
    };
    press(Qt::Key_Space);
    EXPECT_TRUE(model().isPlaying());
    press(Qt::Key_Space);
    EXPECT_FALSE(model().isPlaying());

    std::vector<std::string> order;
    for (int stop = 0; stop < 8; ++stop) {
        press(Qt::Key_Tab);
        order.push_back(focused());
        if (order.back() == "Start") {
            press(Qt::Key_Right, 5);
        } else if (order.back() == "End") {
            press(Qt::Key_Left, 10);
        }
    }
    EXPECT_THAT(order, testing::ElementsAre("Close", "Continue", "Play", "Start", "End", "Trim", "Sound",
                                            "Rotation"));
    EXPECT_EQ(model().trimmerXOffset(), 10);
    EXPECT_EQ(model().trimmerXOffset() + model().trimmerSize().width(), 343 - 20);

    QTest::keyClick(window_, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(model().trimmerXOffset(), 12);
    QTest::keyClick(window_, Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NEAR(model().trimmerXOffset(), 12 + model().frameDistance(), 1e-9);

    press(Qt::Key_Backtab);
    press(Qt::Key_Space);
    EXPECT_TRUE(model().isSoundVisible());
    press(Qt::Key_Down, 3);
    EXPECT_EQ(model().volumeHeight(), 192 - 3 * 8);
    EXPECT_FALSE(model().isPlaying());
    press(Qt::Key_Escape);
    EXPECT_TRUE(eventually([&] { return focused() == "Keep editing"; }));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_TRUE(isClosed());
}

// By whatever matrix they were coded, told or not, in the picture and on the strip.
TEST_F(EditorScreenTest, ShowsTheColoursThatWereCoded) {
    const QColor coded(32, 160, 64);
    const auto isNear = [&](QColor colour) {
        const auto near = [](int left, int right) { return std::abs(left - right) <= 6; };
        return near(colour.red(), coded.red()) && near(colour.green(), coded.green()) &&
               near(colour.blue(), coded.blue());
    };
    for (const auto& [size, matrix, tags] : {std::tuple("1280x720", "bt709", "-colorspace bt709"),
                                             {"1280x720", "bt709", ""},
                                             {"1280x720", "bt601", "-colorspace smpte170m"},
                                             {"320x240", "bt601", ""},
                                             {"320x240", "bt709", "-colorspace bt709 -color_range pc"}}) {
        SCOPED_TRACE(std::string(size) + " " + matrix + " " + tags);
        const std::string clip = folders_.file("coded.mp4");
        const std::string range = std::string(tags).ends_with("pc") ? "full" : "limited";
        test::runTool("ffmpeg",
                      test::wordsOf("-v error -y -f lavfi -i color=0x20a040:s=" + std::string(size) +
                                    ":r=10:d=1 -vf scale=out_color_matrix=" + matrix + ":out_range=" + range +
                                    ",format=yuv420p -c:v libx264 -preset ultrafast " + tags + " " + clip));
        present(clip);
        ASSERT_TRUE(eventually([this] { return !model().thumbnails().back().isNull(); }));
        QQuickItem* const picture = block("CorvantaSdkVideoPlayer");
        const auto shown = [&] { return colourAt(picture, {picture->width() / 4, picture->height() / 2}); };
        EXPECT_TRUE(eventually([&] { return isNear(shown()); })) << shown().name().toStdString();
        const QImage thumbnail = model().thumbnails().front();
        const QColor onStrip = thumbnail.pixelColor(thumbnail.rect().center());
        EXPECT_TRUE(isNear(onStrip)) << onStrip.name().toStdString();
        QTest::keyClick(window_, Qt::Key_Escape);
        ASSERT_TRUE(isClosed());
    }
}

// Nothing leaves the window, and the screen's parts keep apart, at any size.
TEST_F(EditorScreenTest, FitsEverySize) {
    present();
    ASSERT_TRUE(isFileRead());
    dragStrip(12, 100);
    const auto onScreen = [](QQuickItem* item) { return item->mapRectToScene(item->boundingRect()); };
    const auto fits = [&](const QSize& size) {
        std::vector<QQuickItem*> parts{block("ControlButtons"), block("CorvantaSdkVideoPlayer"),
                                       block("EditionButtons")};
        if (model().isTrimmerVisible()) {
            parts.insert(parts.end(), {block("TrimmerRange"), block("ThumbnailsListView")});
        } else if (model().isRotationVisible()) {
            parts.push_back(block("Rotation"));
        } else if (!onScreen(block("VideoPlayer")).contains(onScreen(block("SoundDragger")))) {
            return false;
        }
        const QRectF all = QRectF(QPointF(0, 0), size).adjusted(-0.01, -0.01, 0.01, 0.01);
        return std::ranges::all_of(parts, [&](QQuickItem* part) {
            const QRectF place = onScreen(part);
            const QRectF inside = place.adjusted(0.1, 0.1, -0.1, -0.1);
            return part->isVisible() && all.contains(place) && place.height() >= 15 &&
                   std::ranges::none_of(parts, [&](QQuickItem* other) {
                       return other != part && inside.intersects(onScreen(other));
                   });
        });
    };
    for (const QSize size : {QSize(320, 568), QSize(390, 844), QSize(844, 390), QSize(1280, 1024)}) {
        window_->resize(size);
        ASSERT_TRUE(eventually([&] { return view_->size() == size; }));
        for (const char* const tab : {"Trim", "Sound", "Rotation"}) {
            model().rotateRight();
            click(tab);
            EXPECT_TRUE(eventually([&] { return fits(size); }))
                << size.width() << "x" << size.height() << " " << tab;
        }
    }
}

} // namespace
} // namespace corvanta
