#include "CorvantaSdkVideo/Editor/EditorFixture.hpp"

#include <platform/AssetReader.hpp>

#include <gmock/gmock.h>

#include <random>

namespace corvanta {
namespace {

using test::Clip;
using test::makeClip;

class TrimmerModelTest : public test::EditorFixture {
  protected:
    static constexpr double height = 64;

    void drag(double x, double y = 30) {
        model_->applyTrimming(QPointF(x, y), QRectF(0, 0, model_->trimmerInitialWidth(), height));
    }

    // What must hold after any drags, whatever they were.
    void expectConsistent() const {
        const auto& m = *model_;
        const double width = m.trimmerInitialWidth();
        const double duration = m.videoDuration();
        const double left = m.leftEdgePosition();
        const double right = m.rightEdgePosition();
        ASSERT_DOUBLE_EQ(m.trimmerStart(), duration * ((left - 12) / width));
        ASSERT_DOUBLE_EQ(m.stopAt(), duration * ((right + 12) / width));
        ASSERT_EQ(m.trimmerXOffset(), left - 12);
        ASSERT_EQ(m.trimmerRightEdgePosition(), right + 12);
        ASSERT_NEAR(m.trimmerSize().width(), right - left + 24, 1e-6);
        ASSERT_GE(left, 12);
        ASSERT_LE(right + 12, width);
        ASSERT_GE(right - left, 64 - 1e-6);
        ASSERT_GE(m.trimmerStart(), 0);
        ASSERT_LE(m.stopAt(), duration);
        ASSERT_LE(m.leftSpaceSize(), 24);
        ASSERT_LE(m.rightSpaceSize(), 24);
        ASSERT_EQ(m.showRightWhiteSpace(), m.rightSpaceSize() == 24);
    }
};

TEST_F(TrimmerModelTest, LaysOutTheStripAndReadsTheFile) {
    const std::string clip =
        makeClip({.seconds = 2, .pictures = {{.width = 160, .height = 120}}, .rotation = -90});
    open(clip);
    EXPECT_EQ(model_->trimmerSize(), QSizeF(0, 0));
    EXPECT_EQ(model_->trimmerBorderColor(), QColor::fromRgbF(0.3804F, 0.3804F, 0.3804F));
    EXPECT_EQ(model_->thumbnails(), QList<QImage>(8));
    EXPECT_EQ(model_->trimmerRange(), "");

    model_->setupTrimmer(QSizeF(375, 600));
    EXPECT_EQ(model_->trimmerSize(), QSizeF(343, 64));
    EXPECT_EQ(model_->thumbnailSize(), QSizeF(36.875, 64));
    EXPECT_EQ(model_->trimmerCenter(), 171.5);
    drag(60);
    EXPECT_EQ(model_->trimmerRange(), "00:00 - 00:00");

    ASSERT_TRUE(eventually([&] { return readyThumbnails() == 8; }));
    const double duration = AssetReader(URL::fromFilePath(clip)).duration();
    EXPECT_EQ(model_->videoDuration(), duration);
    EXPECT_EQ(model_->trimmerRange(), "00:00 - 00:02");
    EXPECT_EQ(model_->videoAspectRatio(), 120.0 / 160.0);
    EXPECT_EQ(model_->videoResolution(), QSizeF(120, 160));
    EXPECT_EQ(model_->videoOrientation(), Orientation::portrait);
    EXPECT_EQ(model_->currentRotation(), -90);

    const auto calls = fakeEditor_->thumbnailCalls();
    ASSERT_EQ(calls.size(), 8U);
    for (std::size_t index = 0; index < calls.size(); ++index) {
        EXPECT_DOUBLE_EQ(calls[index].interval, duration * (1 - static_cast<double>(index) / 8));
        EXPECT_EQ(calls[index].width, 45);
        EXPECT_EQ(calls[index].height, 64);
        EXPECT_EQ(model_->thumbnails().at(static_cast<qsizetype>(index)).pixelColor(0, 0).red(),
                  static_cast<int>(index));
        EXPECT_TRUE(std::filesystem::exists(calls[index].picture)) << "a file outside the documents";
    }
}

TEST_F(TrimmerModelTest, StopsQuietlyAtAThumbnailThatFails) {
    for (const bool unreadable : {false, true}) {
        auto editor = std::make_shared<test::FakeEditor>();
        (unreadable ? editor->unreadableThumbnail : editor->failingThumbnail) = 3;
        editor_ = editor;
        openAndLayOut(makeClip({.seconds = 2}));
        ASSERT_TRUE(eventually([&] { return editor->thumbnailCalls().size() == 4; }));
        settle();
        EXPECT_EQ(editor->thumbnailCalls().size(), 4U);
        EXPECT_EQ(readyThumbnails(), 3);
        EXPECT_FALSE(model_->hasError());
    }
}

TEST_F(TrimmerModelTest, FollowsEachPartOfTheFrame) {
    openAndLayOut(makeClip({.seconds = 2}));
    const double duration = model_->videoDuration();
    struct Case {
        double x, left, right, leftSpace, rightSpace;
        bool seeks;
    };
    // W is 343. Each drag goes on from where the one before has left the frame.
    const std::vector<Case> cases = {
        {100, 12, 331, 0, 0, false},       // between the zones
        {12, 12, 331, 0, 0, false},        // the left edge stops short of the start
        {331, 12, 331, 0, 0, false},       // and the right one of the end
        {171.5, 12, 331, 24, 24, true},    // the centre, without room to move
        {160, 12, 331, 24, 24, false},     // too far to the left for the whole frame
        {12.5, 12.5, 331, 12.5, 24, true}, // the left edge's space is that of the touch
        {60, 60, 331, 24, 24, true},       // at most 24
        {300, 60, 300, 24, 24, false},     // the right drag doesn't seek
        {325, 60, 325, 24, 18, false},     // its space is what is left of the strip
        {277, 60, 277, 24, 24, false},     // 48 away still counts
        {229, 60, 229, 24, 24, false},     //
        {181, 60, 181, 24, 24, false},     //
        {136, 75.5, 196.5, 24, 24, true},  // the centre moves both, by 15.5
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.x);
        player_->takeCalls();
        drag(c.x);
        EXPECT_EQ(model_->leftEdgePosition(), c.left);
        EXPECT_EQ(model_->rightEdgePosition(), c.right);
        EXPECT_EQ(model_->leftSpaceSize(), c.leftSpace);
        EXPECT_EQ(model_->rightSpaceSize(), c.rightSpace);
        EXPECT_EQ(player_->takeCalls().size(), c.seeks ? 1U : 0U);
        EXPECT_DOUBLE_EQ(model_->trimmerStart(), duration * (c.left - 12) / 343);
        EXPECT_DOUBLE_EQ(model_->stopAt(), duration * (c.right + 12) / 343);
    }
}

TEST_F(TrimmerModelTest, LightsUpAtTheFirstDragInsideTheStripAndStaysLit) {
    openAndLayOut(makeClip({.seconds = 2}));
    for (const auto& [x, y] :
         std::vector<std::pair<double, double>>{{-1, 30}, {60, -0.5}, {60, 64}, {343, 30}, {NAN, 30}}) {
        drag(x, y);
        EXPECT_EQ(model_->leftEdgePosition(), 12);
        EXPECT_FALSE(model_->isTrimmerRangeVisible());
        EXPECT_EQ(model_->trimmerBorderColor(), CorvantaColor::gray);
    }
    drag(100);
    EXPECT_TRUE(model_->isTrimmerRangeVisible());
    EXPECT_EQ(model_->trimmerBorderColor(), QColor::fromRgbF(1.0F, 0.7569F, 0.0275F));

    drag(60);
    const double start = model_->trimmerStart();
    EXPECT_GT(start, 0);
    model_->setupTrimmer(QSizeF(320, 600));
    EXPECT_TRUE(model_->isTrimmerRangeVisible());
    EXPECT_EQ(model_->trimmerSize(), QSizeF(288, 64));
    EXPECT_EQ(model_->leftEdgePosition(), 12);
    EXPECT_EQ(model_->trimmerStart(), start) << "which only drags change";
}

TEST_F(TrimmerModelTest, HoldsItsBoundsAndTheFormulaAfterAnyDrags) {
    const std::string clip = makeClip({.seconds = 2});
    std::mt19937 random(1);
    for (const double screenWidth : {320.0, 333.0, 375.0, 1024.0, 1280.0, 527.3, 901.7}) {
        openAndLayOut(clip, screenWidth);
        const double width = model_->trimmerInitialWidth();
        for (int sweep = 0; sweep < 4; ++sweep) {
            for (double step = 0; step < width; ++step) {
                drag(sweep % 2 == 0 ? step : width - 1 - step);
                ASSERT_NO_FATAL_FAILURE(expectConsistent());
            }
        }
        EXPECT_LT(model_->stopAt() - model_->trimmerStart(), model_->videoDuration());

        std::uniform_real_distribution<double> anywhere(-20, width + 20);
        std::normal_distribution<double> nearby(0, 12);
        int moves = 0;
        for (std::size_t count = 0; count < 5000; ++count) {
            const double before = model_->trimmerXOffset() + model_->trimmerRightEdgePosition();
            const std::array grips{model_->leftEdgePosition(), model_->rightEdgePosition(),
                                   model_->trimmerCenter()};
            drag(count % 4 == 3 ? anywhere(random) : grips[count % 4] + nearby(random));
            ASSERT_NO_FATAL_FAILURE(expectConsistent());
            moves += before != model_->trimmerXOffset() + model_->trimmerRightEdgePosition() ? 1 : 0;
        }
        EXPECT_GT(moves, 2500);
    }
}

TEST_F(TrimmerModelTest, KeepsTheRangeInSecondsOverSizes) {
    openAndLayOut(makeClip({.seconds = 2}));
    drag(60);
    drag(290);
    const double start = model_->trimmerStart();
    const double end = model_->stopAt();
    for (const double screenWidth : {1280.0, 120.0, 527.3, 375.0}) {
        model_->resizeTrimmer(QSizeF(screenWidth, 600));
        EXPECT_EQ(model_->trimmerStart(), start);
        EXPECT_EQ(model_->stopAt(), end);
        const double width = screenWidth - 32;
        EXPECT_NEAR(model_->trimmerXOffset(), width * start / model_->videoDuration(), 1e-9);
        EXPECT_NEAR(model_->trimmerSize().width(), width * (end - start) / model_->videoDuration(), 1e-9);
        EXPECT_EQ(model_->thumbnailSize().width(), (width - 48) / 8);
    }
}

TEST_F(TrimmerModelTest, MakesTheThumbnailsAnewForANewWidthOneAtATime) {
    std::promise<void> gate;
    fakeEditor_->gate = gate.get_future().share();
    openAndLayOut(makeClip({.seconds = 2}));
    ASSERT_TRUE(eventually([&] { return fakeEditor_->thumbnailCalls().size() == 2; }));
    for (const double screenWidth : {400.0, 600.0, 1280.0}) {
        model_->resizeTrimmer(QSizeF(screenWidth, 600));
        model_->renewThumbnails();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(fakeEditor_->thumbnailCalls().size(), 2U);
    gate.set_value();
    ASSERT_TRUE(eventually([&] { return !model_->isMakingThumbnails(); }));
    const auto calls = fakeEditor_->thumbnailCalls();
    EXPECT_EQ(calls.size(), 2U + 8U) << "none for a size in between";
    EXPECT_EQ(calls.back().width, 159);
    model_->renewThumbnails();
    EXPECT_FALSE(model_->isMakingThumbnails());
    model_->setProperty("pixelRatio", 2);
    model_->renewThumbnails();
    ASSERT_TRUE(eventually([&] { return !model_->isMakingThumbnails(); }));
    EXPECT_EQ(fakeEditor_->thumbnailCalls().back().width, 318);
    EXPECT_EQ(fakeEditor_->thumbnailCalls().back().height, 128);
}

TEST_F(TrimmerModelTest, GoesToTheVeryEndsByKeysAndByFrames) {
    openAndLayOut(makeClip({.seconds = 2}));
    const double duration = model_->videoDuration();
    model_->moveStartBy(2);
    model_->moveStartBy(model_->frameDistance());
    EXPECT_NEAR(model_->trimmerStart(), 2 * duration / 343 + 1.0 / 30, 1e-9);
    model_->moveEndBy(-20);
    model_->moveRangeBy(5);
    EXPECT_NEAR(model_->trimmerXOffset(), 7 + model_->frameDistance(), 1e-9);
    EXPECT_EQ(model_->trimmerBorderColor(), CorvantaColor::ambar);
    expectConsistent();

    model_->moveEndBy(-1e6);
    EXPECT_NEAR(model_->rightEdgePosition() - model_->leftEdgePosition(), 64, 1e-9);
    model_->moveRangeBy(1e6);
    EXPECT_DOUBLE_EQ(model_->stopAt(), duration);
    model_->moveRangeBy(-1e6);
    EXPECT_DOUBLE_EQ(model_->trimmerStart(), 0);
    for (const double distance : {1e6, -1e6}) {
        model_->moveEndBy(-distance);
        model_->moveStartBy(distance);
    }
    EXPECT_EQ(model_->trimmerStart(), 0);
    EXPECT_EQ(model_->stopAt(), duration);
    expectConsistent();
}

TEST_F(TrimmerModelTest, ReadsFilesOfEveryKind) {
    useRealEditor();
    const Clip hour{.seconds = 3725,
                    .pictures = {{.source = "color=c=red", .width = 128, .height = 128, .rate = "1"}},
                    .sounds = {},
                    .codecs = "-c:v mpeg4 -g 60"};
    const Clip silent{.seconds = 2, .sounds = {}};
    const Clip sound{.seconds = 2, .pictures = {}, .container = "m4a", .codecs = "-c:a aac"};
    for (const auto& [clip, range, aspect, thumbnails] :
         {std::tuple(hour, "00:00 - 62:05", 1.0, 8), std::tuple(silent, "00:00 - 00:02", 160.0 / 120.0, 8),
          std::tuple(sound, "00:00 - 00:02", 0.5, 0)}) {
        SCOPED_TRACE(thumbnails);
        openAndLayOut(makeClip(clip));
        ASSERT_TRUE(eventually([&, ready = thumbnails] { return readyThumbnails() == ready; }));
        EXPECT_EQ(model_->trimmerRange(), range);
        EXPECT_DOUBLE_EQ(model_->videoAspectRatio(), aspect);
        EXPECT_TRUE(model_->isReady());
        EXPECT_EQ(model_->notice(), thumbnails > 0 ? "" : "There is no picture in this file.");
        model_->trimVideo([this] { ++handled_; });
        ASSERT_TRUE(eventually([&] { return !model_->isTrimming(); }));
        ASSERT_FALSE(model_->hasError());
        EXPECT_NEAR(AssetReader(model_->outputURL()).duration(), model_->videoDuration(), 0.05);
    }
    // The pictures are gone when they have been read; what is left are the edited files.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(documents()), {}), 3);
}

TEST_F(TrimmerModelTest, StaysBlankForAFileThatCannotBeRead) {
    open(directory_.file("missing.mp4"));
    model_->setupTrimmer(QSizeF(375, 600));
    settle();
    EXPECT_EQ(model_->videoDuration(), 0);
    EXPECT_EQ(model_->videoAspectRatio(), 0.5);
    EXPECT_FALSE(model_->hasError());
    EXPECT_TRUE(model_->isUnreadable());
    EXPECT_EQ(model_->notice(), "This file can't be read as a video.");
    model_->moveStartBy(2);
    EXPECT_FALSE(model_->isTrimmerRangeVisible());
    EXPECT_THAT(fakeEditor_->thumbnailCalls(), testing::IsEmpty());
    drag(60);
    EXPECT_EQ(model_->leftEdgePosition(), 60);
    EXPECT_EQ(model_->trimmerStart(), 0);
}

} // namespace
} // namespace corvanta
