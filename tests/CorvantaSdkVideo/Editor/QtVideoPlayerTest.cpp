#include <CorvantaSdkVideo/Editor/Player/QtVideoPlayer.hpp>

#include "support/MediaFixtures.hpp"

#include <CorvantaSdkVideo/Editor/Error/PlayerUnavailable.hpp>

#include <QGuiApplication>
#include <QImage>
#include <QTest>
#include <QVideoFrame>
#include <QVideoSink>

#include <gmock/gmock.h>

#include <cstdlib>

// Both keep tables for the life of the process: Qt's connection to the sound server, which it never closes,
// and GLib's registry of names, whose only pointer the leak checker can't read.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:libpulse.so\nleak:libglib-2.0.so\n"; }

namespace corvanta {
namespace {

class Application : public testing::Environment {
  public:
    void SetUp() override {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        application_ = std::make_unique<QGuiApplication>(count_, arguments_);
    }
    void TearDown() override { application_.reset(); }

  private:
    int count_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QGuiApplication> application_;
};

const auto* const application = testing::AddGlobalTestEnvironment(std::make_unique<Application>().release());

class QtVideoPlayerTest : public testing::Test {
  protected:
    void open(const std::string& path) {
        player_ = std::make_unique<QtVideoPlayer>(URL::fromFilePath(path));
        player_->setVideoSink(&sink_);
        QObject::connect(player_.get(), &VideoPlayer::didPlayToEndTime, [this] { ++ends_; });
        QObject::connect(player_.get(), &VideoPlayer::timeObserved,
                         [this](double seconds) { observed_.push_back(seconds); });
    }

    // Red for the clip's first second and a half, then blue.
    bool shows(bool red) {
        return eventually([this, red] {
            const QImage image = sink_.videoFrame().toImage();
            return !image.isNull() && (image.pixelColor(image.rect().center()).red() > 128) == red;
        });
    }

    static bool eventually(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 60'000);
    }

    test::TemporaryDirectory directory_;
    QVideoSink sink_;
    std::unique_ptr<QtVideoPlayer> player_;
    int ends_ = 0;
    std::vector<double> observed_;
};

TEST_F(QtVideoPlayerTest, ShowsPlaysSeeksAndStartsAgainAfterTheEnd) {
    const std::string clip = directory_.file("red 100% then blue.mp4");
    test::runTool("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=red:s=128x96:r=30:d=1.5", "-f",
                             "lavfi", "-i", "color=blue:s=128x96:r=30:d=1", "-filter_complex", "concat=n=2",
                             "-g", "15", "-pix_fmt", "yuv420p", clip});
    open(clip);
    EXPECT_TRUE(shows(true)) << "the first frame, before anything plays";
    EXPECT_EQ(ends_, 0);
    for (const int second : {2, 0, 1, 2, 0, 2}) {
        player_->seek(second);
    }
    EXPECT_TRUE(shows(false)) << "the last of many seeks";
    player_->seek(0);
    EXPECT_TRUE(shows(true));

    player_->play();
    ASSERT_TRUE(eventually([this] { return ends_ == 1; }));
    EXPECT_TRUE(shows(false)) << "the last frame stays";
    ASSERT_EQ(observed_.size(), 2U);
    EXPECT_GE(observed_[0], 1);
    EXPECT_LT(observed_[0], 2);
    EXPECT_GE(observed_[1], 2);
    player_->pause();
    EXPECT_TRUE(shows(false));

    observed_.clear();
    player_->seek(1);
    player_->play();
    ASSERT_TRUE(eventually([this] { return ends_ == 2; }));
    ASSERT_EQ(observed_.size(), 1U);
    EXPECT_GE(observed_[0], 2);
}

TEST_F(QtVideoPlayerTest, TakesWhatIsAskedOfItBeforeTheFileIsLoaded) {
    const std::string clip = test::makeClip({.seconds = 3, .sounds = {}});
    open(clip);
    player_->setVolume(0.25F);
    EXPECT_EQ(player_->volume(), 0.25F);
    player_->seek(2);
    player_->play();
    ASSERT_TRUE(eventually([this] { return ends_ == 1; }));
    EXPECT_THAT(observed_, testing::Each(testing::Ge(2)));
}

TEST(QtVideoPlayerDeathTest, SaysWhatIsMissingInsteadOfCrashing) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("GST_PLUGIN_SYSTEM_PATH", "/nonexistent", 1);
            setenv("GST_REGISTRY", "/dev/null", 1);
            try {
                QtVideoPlayer player(URL::fromFilePath("/clip.mp4"));
            } catch (const PlayerUnavailable& error) {
                std::fputs(error.what(), stderr);
                std::_Exit(3);
            }
        },
        testing::ExitedWithCode(3), "playbin.*gstreamer1.0-plugins-base");
}

} // namespace
} // namespace corvanta
