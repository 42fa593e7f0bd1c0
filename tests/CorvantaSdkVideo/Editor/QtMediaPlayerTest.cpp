#include "CorvantaSdkVideo/Editor/EditorFixture.hpp"
#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Editor/Error/PlayerUnavailable.hpp>
#include <CorvantaSdkVideo/Editor/Player/QtMediaPlayer.hpp>

#include <QImage>
#include <QThread>
#include <QVideoFrame>
#include <QVideoSink>

#include <gmock/gmock.h>

#include <cstdlib>

namespace corvanta {
namespace {

using testing::ElementsAre;
using testing::Ge;

class QtMediaPlayerTest : public test::EditorFixture {
  protected:
    void start(const std::string& path) {
        real_ = std::make_unique<QtMediaPlayer>(URL::fromFilePath(path));
        real_->setVideoSink(&sink_);
        QObject::connect(real_.get(), &MediaPlayer::didPlayToEndTime, [this] { ++ends_; });
        QObject::connect(real_.get(), &MediaPlayer::timeObserved,
                         [this](double seconds) { observed_.push_back(seconds); });
    }

    // Red for the clip's first second and a half, then blue.
    bool shows(bool red) {
        return eventually([this, red] {
            const QImage image = sink_.videoFrame().toImage();
            return !image.isNull() && (image.pixelColor(image.rect().center()).red() > 128) == red;
        });
    }

    QVideoSink sink_;
    std::unique_ptr<QtMediaPlayer> real_;
    int ends_ = 0;
    std::vector<double> observed_;
};

TEST_F(QtMediaPlayerTest, ShowsPlaysSeeksAndStartsAgainAfterTheEnd) {
    const std::string clip = directory_.file("red 100% then blue.mp4");
    test::runTool("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=red:s=128x96:r=30:d=1.5", "-f",
                             "lavfi", "-i", "color=blue:s=128x96:r=30:d=1", "-filter_complex", "concat=n=2",
                             "-g", "15", "-pix_fmt", "yuv420p", clip});
    start(clip);
    EXPECT_TRUE(shows(true)) << "the first frame, before anything plays";
    for (const int second : {2, 0, 1, 2, 0, 2}) {
        real_->seek(second);
    }
    EXPECT_TRUE(shows(false)) << "the last of many seeks";
    real_->seek(0);
    EXPECT_TRUE(shows(true));
    EXPECT_EQ(ends_, 0);

    real_->play();
    ASSERT_TRUE(eventually([this] { return ends_ == 1; }));
    EXPECT_TRUE(shows(false)) << "the last frame stays";
    EXPECT_THAT(std::exchange(observed_, {}), ElementsAre(testing::AllOf(Ge(1), testing::Lt(2)), Ge(2)));
    real_->pause();
    EXPECT_TRUE(shows(false));
    real_->seek(1);
    real_->play();
    ASSERT_TRUE(eventually([this] { return ends_ == 2; }));
    EXPECT_THAT(observed_, ElementsAre(Ge(2)));
}

TEST_F(QtMediaPlayerTest, TakesWhatIsAskedOfItBeforeTheFileIsLoaded) {
    start(test::makeClip({.seconds = 3, .sounds = {}}));
    real_->setVolume(0.25F);
    EXPECT_EQ(real_->volume(), 0.25F);
    real_->seek(2);
    real_->play();
    ASSERT_TRUE(eventually([this] { return ends_ == 1; }));
    EXPECT_THAT(observed_, testing::Each(Ge(2)));
}

TEST_F(QtMediaPlayerTest, RefusesWhatTheModuleWouldNotOpen) {
    const std::string clip = test::makeClip({.seconds = 1, .sounds = {}});
    for (const std::string& text :
         {std::string("no video"), "#EXTM3U\n#EXTINF:1,\n" + clip + "\n#EXT-X-ENDLIST\n"}) {
        test::writeFile(directory_.file("notes.mp4"), text);
        start(directory_.file("notes.mp4"));
        QString reason;
        QObject::connect(real_.get(), &MediaPlayer::failed,
                         [&reason](const QString& told) { reason = told; });
        EXPECT_TRUE(eventually([&reason] { return reason.contains("notes.mp4"); })) << text;
    }
}

// The thread that draws may be busy for as long as it likes.
TEST(PlaybackEngineTest, OpensAndSeeksWithoutTheQtThread) {
    const QString clip = QString::fromStdString(test::makeClip({.seconds = 3}));
    auto* const engine = std::make_unique<PlaybackEngine>(QUrl::fromLocalFile(clip), false).release();
    QThread thread;
    engine->moveToThread(&thread);
    QObject::connect(&thread, &QThread::finished, engine, &QObject::deleteLater);
    thread.start();
    std::atomic<quint64> sought = 0;
    QObject::connect(
        engine, &PlaybackEngine::sought, engine, [&sought](quint64 number) { sought = number; },
        Qt::DirectConnection);
    QMetaObject::invokeMethod(engine, &PlaybackEngine::open);
    QVideoFrame frame;
    EXPECT_TRUE(test::eventually([&] { return (frame = engine->takeFrame().frame).isValid(); }));
    for (quint64 number = 1; number <= 50; ++number) {
        const qint64 position = number < 50 ? static_cast<qint64>(number % 2) * 1000 : 2000;
        QMetaObject::invokeMethod(engine, [=] { engine->seek(position, number); });
    }
    EXPECT_TRUE(test::eventually([&] { return sought == 50; }));
    // A frame that takes too long is no longer waited for, but shown when it comes.
    EXPECT_TRUE(test::eventually([&] {
        const QVideoFrame shown = engine->takeFrame().frame;
        frame = shown.isValid() ? shown : frame;
        return std::abs(frame.startTime() - 2'000'000) < 40'000;
    })) << "the last one";
    thread.quit();
    thread.wait();
}

TEST(QtMediaPlayerDeathTest, SaysWhatIsMissingInsteadOfCrashing) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("GST_PLUGIN_SYSTEM_PATH", "/nonexistent", 1);
            setenv("GST_REGISTRY", "/dev/null", 1);
            try {
                QtMediaPlayer player(URL::fromFilePath("/clip.mp4"));
            } catch (const PlayerUnavailable& error) {
                std::fputs(error.what(), stderr);
                std::_Exit(3);
            }
        },
        testing::ExitedWithCode(3), "playbin.*gstreamer1.0-plugins-base");
}

} // namespace
} // namespace corvanta
