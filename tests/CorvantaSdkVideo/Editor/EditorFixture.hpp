#pragma once

#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace corvanta::test {

class FakePlayer : public VideoPlayer {
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
    Task<CorvantaSdkVideoEditorResult> edit(CorvantaSdkVideoEditorInput video) override;
    Task<URL> getThumbnailForVideo(URL at, double interval, std::optional<std::int64_t> width,
                                   std::optional<std::int64_t> height) override;

    struct ThumbnailCall {
        double interval;
        std::optional<std::int64_t> width;
        std::optional<std::int64_t> height;
        std::string picture;
    };
    std::vector<CorvantaSdkVideoEditorInput> edits() const;
    std::vector<ThumbnailCall> thumbnailCalls() const;

    /// Set these before the view model works.
    std::optional<CorvantaSdkVideoError> editError;
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
    EditorFixture();

    void useRealEditor();
    void open(const std::string& video, std::optional<CorvantaSdkVideoFileDescriptor> output = {});
    /// `open`, the layout for that width and the wait for the file's duration.
    void openAndLayOut(const std::string& video, double screenWidth = 375);

    /// Runs the event loop until `condition` holds; false if it never does.
    static bool eventually(const std::function<bool()>& condition);
    /// Runs what is in the event loop now, on both of the editor's threads.
    static void settle();

    int readyThumbnails() const;
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
