#include "CorvantaSdkVideo/Editor/EditorFixture.hpp"

#include <platform/AssetReader.hpp>

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using test::Clip;
using test::makeClip;
using testing::ElementsAre;

class TrimmerModelTest : public test::EditorFixture {
  protected:
    static constexpr double height = 64;

    void drag(double x, double y = 30) {
        model_->applyTrimming(QPointF(x, y), QRectF(0, 0, model_->trimmerInitialWidth(), height));
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

// What the screen sees of a change while the next one is still to come.
TEST_F(TrimmerModelTest, TellsOfTheChangesOfADragInTheirOrder) {
    openAndLayOut(makeClip({.seconds = 2}));
    using Model = CorvantaSdkVideoEditorViewModel;
    for (const auto& [changed, name] : std::vector<std::pair<void (Model::*)(), const char*>>{
             {&Model::trimmerXOffsetChanged, "offset"},
             {&Model::trimmerSizeChanged, "size"},
             {&Model::leftSpaceSizeChanged, "left space"},
             {&Model::rightSpaceSizeChanged, "right space"},
             {&Model::showRightWhiteSpaceChanged, "white space"},
             {&Model::trimmerStartChanged, "start"},
             {&Model::stopAtChanged, "end"}}) {
        QObject::connect(model_.get(), changed, model_.get(),
                         [this, name = name] { player_->calls.emplace_back(name); });
    }
    drag(60);
    EXPECT_THAT(player_->takeCalls(), ElementsAre("left space", "offset", "size", "start", "seek 0.000000"));
    drag(300);
    EXPECT_THAT(player_->takeCalls(), ElementsAre("right space", "white space", "size", "end"));
    drag(186);
    EXPECT_THAT(player_->takeCalls(), ElementsAre("offset", "start", "seek 0.000000", "end"));
    model_->resizeTrimmer(QSizeF(400, 600));
    EXPECT_THAT(player_->takeCalls(), ElementsAre("size", "offset", "offset", "size"));
    EXPECT_DOUBLE_EQ(model_->trimmerStart(), model_->videoDuration() * 54 / 343);
    EXPECT_DOUBLE_EQ(model_->stopAt(), model_->videoDuration() * 318 / 343);
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
    model_->moveStartBy(2);
    model_->moveStartBy(model_->frameDistance());
    EXPECT_NEAR(model_->trimmerStart(), 2 * model_->videoDuration() / 343 + 1.0 / 30, 1e-9);
    model_->moveEndBy(-20);
    model_->moveRangeBy(5);
    EXPECT_NEAR(model_->trimmerXOffset(), 7 + model_->frameDistance(), 1e-9);
    EXPECT_EQ(model_->trimmerBorderColor(), CorvantaColor::ambar);
    for (const double distance : {1e6, -1e6}) {
        model_->moveEndBy(-distance);
        model_->moveStartBy(distance);
    }
    EXPECT_EQ(model_->trimmerStart(), 0);
    EXPECT_EQ(model_->stopAt(), model_->videoDuration());
    EXPECT_TRUE(model_->keepsAll());
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
