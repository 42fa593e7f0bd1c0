#pragma once

#include "support/MediaFixtures.hpp"
#include "support/Patience.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>

#include <QCoreApplication>
#include <QTest>

#include <boost/asio/post.hpp>

#include <gtest/gtest.h>

#include <future>

namespace corvanta::test {

class FakePlayer : public MediaPlayer {
  public:
    void play() override { calls.emplace_back("play"); }
    void pause() override { calls.emplace_back("pause"); }
    void seek(double seconds) override { calls.push_back("seek " + std::to_string(seconds)); }
    float volume() const override { return volume_; }
    void setVolume(float volume) override { volume_ = volume; }
    void setVideoSink(QVideoSink*) override {}

    std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

    std::vector<std::string> calls;

  private:
    float volume_ = 1;
};

/// Answers without ffmpeg. Its operations run on another thread than the test.
class FakeEditor : public CorvantaSdkVideoEditor {
  public:
    Task<CorvantaSdkVideoEditorResult> edit(CorvantaSdkVideoEditorInput video) override {
        {
            const std::lock_guard lock(mutex_);
            edits_.push_back(video);
        }
        if (gate.valid()) {
            gate.wait();
        }
        CorvantaSdkVideoEditorResult result{video.outputURL};
        co_return result;
    }
    Task<URL> getThumbnailForVideo(URL, double interval, std::optional<std::int64_t> width,
                                   std::optional<std::int64_t> height) override {
        std::size_t index = 0;
        std::string path;
        {
            const std::lock_guard lock(mutex_);
            index = thumbnailCalls_.size();
            path = directory_.file(std::to_string(index) + ".png");
            thumbnailCalls_.push_back({interval, width, height, path});
        }
        if (gate.valid() && index == 1) {
            gate.wait();
        }
        if (failingThumbnail == index) {
            throw CorvantaSdkVideoError(CorvantaSdkVideoError::trimFailed);
        }
        if (unreadableThumbnail != index) {
            QImage image(4, 4, QImage::Format_RGB32);
            image.fill(QColor(static_cast<int>(index), 0, 0));
            image.save(QString::fromStdString(path));
        }
        co_return URL::fromFilePath(path);
    }

    struct ThumbnailCall {
        double interval;
        std::optional<std::int64_t> width;
        std::optional<std::int64_t> height;
        std::string picture;
    };
    std::vector<CorvantaSdkVideoEditorInput> edits() const {
        const std::lock_guard lock(mutex_);
        return edits_;
    }
    std::vector<ThumbnailCall> thumbnailCalls() const {
        const std::lock_guard lock(mutex_);
        return thumbnailCalls_;
    }

    /// Set these before the view model works.
    std::optional<std::size_t> failingThumbnail;
    std::optional<std::size_t> unreadableThumbnail;
    /// What an edit and the second thumbnail wait for.
    std::shared_future<void> gate;

  private:
    mutable std::mutex mutex_;
    std::vector<CorvantaSdkVideoEditorInput> edits_;
    std::vector<ThumbnailCall> thumbnailCalls_;
    TemporaryDirectory directory_;
};

/// A view model on a real file with a fake player and, unless `useRealEditor` is called, a fake editor.
class EditorFixture : public testing::Test {
  protected:
    EditorFixture() { setenv("XDG_DATA_HOME", directory_.file("data").c_str(), 1); }

    void useRealEditor() { editor_ = std::make_shared<CorvantaSdkVideoEditorImplementation>(); }
    void open(const std::string& video, std::optional<CorvantaSdkVideoFileDescriptor> output = {}) {
        const auto makePlayer = [this](const URL&) {
            auto player = std::make_unique<FakePlayer>();
            player_ = player.get();
            return player;
        };
        const auto completion = [this](const CorvantaSdkVideoEditorResult& result) {
            results_.push_back(result);
            onCompletion_();
        };
        model_ = std::make_unique<CorvantaSdkVideoEditorViewModel>(
            editor_, VideosInformationGenerator(), std::make_shared<CorvantaCredentialsManagerImp>(),
            CorvantaSdkVideoFile(URL::fromFilePath(video)), output, completion, makePlayer);
    }
    /// `open`, the layout for that width and the wait for the file's duration.
    void openAndLayOut(const std::string& video, double screenWidth = 375) {
        open(video);
        model_->setupTrimmer(QSizeF(screenWidth, 600));
        ASSERT_TRUE(eventually([this] { return model_->videoDuration() > 0; }));
    }

    /// Runs the event loop until `condition` holds; false if it never does.
    static bool eventually(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, patienceInMilliseconds);
    }
    /// Runs what is in the event loop now, on both of the editor's threads.
    static void settle() {
        for (int round = 0; round < 4; ++round) {
            std::promise<void> reached;
            boost::asio::post(editorWorker(), [&reached] { reached.set_value(); });
            reached.get_future().wait();
            QCoreApplication::processEvents();
        }
    }

    int readyThumbnails() const {
        const QList<QImage> thumbnails = model_->thumbnails();
        return static_cast<int>(
            std::ranges::count_if(thumbnails, [](const QImage& image) { return !image.isNull(); }));
    }
    std::filesystem::path documents() const {
        return directory_.path() / "data/corvanta-sdk-video/documents";
    }

    TemporaryDirectory directory_;
    RecordedLog log_;
    std::shared_ptr<FakeEditor> fakeEditor_ = std::make_shared<FakeEditor>();
    std::shared_ptr<CorvantaSdkVideoEditor> editor_ = fakeEditor_;
    std::vector<CorvantaSdkVideoEditorResult> results_;
    int handled_ = 0;
    std::function<void()> onCompletion_ = [] {};
    FakePlayer* player_ = nullptr;
    std::unique_ptr<CorvantaSdkVideoEditorViewModel> model_;
};

} // namespace corvanta::test
