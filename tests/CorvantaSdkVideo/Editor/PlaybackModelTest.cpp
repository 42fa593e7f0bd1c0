#include "CorvantaSdkVideo/Editor/EditorFixture.hpp"

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using test::makeClip;
using testing::ElementsAre;

class PlaybackModelTest : public test::EditorFixture {
  protected:
    void dragVolume(double y, double movement) {
        model_->changeVolume(QPointF(24, y), QSizeF(0, movement), QRectF(0, 0, 48, 192));
    }
};

TEST_F(PlaybackModelTest, PlaysFromWhereItStandsAndAfterTheEndFromTheRangesStart) {
    openAndLayOut(makeClip({.seconds = 6}));
    for (const double x : {60, 108, 131, 300}) {
        model_->applyTrimming(QPointF(x, 30), QRectF(0, 0, 343, 64));
    }
    EXPECT_NEAR(model_->trimmerStart(), 6.0 * 119 / 343, 0.01);
    // Seeks land on whole seconds, cut off: 0.84, 1.68 and 2.08.
    EXPECT_THAT(player_->takeCalls(), ElementsAre("seek 0.000000", "seek 1.000000", "seek 2.000000"));

    model_->handleAction();
    EXPECT_TRUE(model_->isPlaying());
    model_->handleAction();
    EXPECT_FALSE(model_->isPlaying());
    model_->handleAction();
    EXPECT_THAT(player_->takeCalls(), ElementsAre("play", "pause", "play"));

    Q_EMIT player_->timeObserved(model_->stopAt() - 0.001);
    EXPECT_TRUE(model_->isPlaying());
    Q_EMIT player_->timeObserved(model_->stopAt());
    EXPECT_FALSE(model_->isPlaying());
    EXPECT_TRUE(model_->didFinishPlaying());
    model_->handleAction();
    EXPECT_FALSE(model_->didFinishPlaying());
    EXPECT_THAT(player_->takeCalls(), ElementsAre("pause", "seek 2.000000", "play"));

    Q_EMIT player_->didPlayToEndTime();
    EXPECT_FALSE(model_->isPlaying());
    EXPECT_TRUE(model_->didFinishPlaying());
}

TEST_F(PlaybackModelTest, StopsAtTheRangesEndAndStartsOverBehindIt) {
    openAndLayOut(makeClip({.seconds = 6}));
    model_->keep(1, 4);
    model_->handleAction();
    Q_EMIT player_->positionChanged(3.99);
    EXPECT_TRUE(model_->isPlaying());
    Q_EMIT player_->positionChanged(4);
    EXPECT_FALSE(model_->isPlaying());
    EXPECT_TRUE(model_->didFinishPlaying());
    model_->seekTo(3);
    EXPECT_FALSE(model_->didFinishPlaying());
    Q_EMIT player_->positionChanged(3);
    player_->takeCalls();
    model_->handleAction();
    model_->handleAction();
    EXPECT_THAT(player_->takeCalls(), ElementsAre("play", "pause"));
    model_->keep(1.2, 2.9);
    model_->handleAction();
    EXPECT_THAT(player_->takeCalls(), ElementsAre("seek 1.000000", "play"));
}

TEST_F(PlaybackModelTest, SetsTheVolumeByTheBarMutesAndComesBack) {
    open(makeClip({}));
    // Where the pointer is, how far it went, and the bar's height then.
    for (const auto& [y, movement, height] : std::vector<std::array<double, 3>>{{96, 5, 96},
                                                                                {3, 1, 189},
                                                                                {4, -1, 192},
                                                                                {4.5, -1, 187.5},
                                                                                {4, 0, 188},
                                                                                {179.5, 1, 12.5},
                                                                                {180, 1, 0},
                                                                                {180, -1, 12},
                                                                                {192, 1, 12},
                                                                                {-0.5, -1, 12},
                                                                                {185, 1, 0}}) {
        SCOPED_TRACE(std::to_string(y) + " moved by " + std::to_string(movement));
        dragVolume(y, movement);
        EXPECT_EQ(model_->volumeHeight(), height);
        EXPECT_EQ(player_->volume(), static_cast<float>(height / 192));
        EXPECT_EQ(model_->soundIcon(), height == 0 ? "speaker.slash" : "speaker.wave.3");
        EXPECT_EQ(model_->soundBackgroundColor(), height == 0 ? CorvantaColor::ambar : CorvantaColor::gray);
    }
    model_->muteVideo();
    EXPECT_EQ(model_->volumeHeight(), 192) << "never muted before, so there is no volume to come back to";
    dragVolume(92, 1);
    for (const double height : {0, 100}) {
        model_->muteVideo();
        EXPECT_EQ(model_->volumeHeight(), height);
        EXPECT_EQ(player_->volume(), static_cast<float>(height / 192));
    }
}

TEST_F(PlaybackModelTest, TellsOfAPictureThatDoesNotCome) {
    openAndLayOut(makeClip({}));
    Q_EMIT player_->failed("no decoder");
    EXPECT_EQ(model_->notice(), "The picture can't be shown.");
    EXPECT_TRUE(model_->isReady());
    Q_EMIT player_->recovered();
    EXPECT_EQ(model_->notice(), "");
}

TEST_F(PlaybackModelTest, TurnsInQuartersBothWays) {
    open(makeClip({}));
    std::vector<int> angles;
    for (const char way : std::string_view("RRRRLLLLRRRLLLL")) {
        way == 'R' ? model_->rotateRight() : model_->rotateLeft();
        angles.push_back(model_->videoRotation());
        EXPECT_EQ(model_->videoIsInPortraitMode(), model_->videoRotation() % 180 == 0);
    }
    EXPECT_THAT(angles, ElementsAre(90, 180, 270, 0, -90, -180, -270, 0, 90, 180, 270, 180, 90, 0, -90));
}

} // namespace
} // namespace corvanta
