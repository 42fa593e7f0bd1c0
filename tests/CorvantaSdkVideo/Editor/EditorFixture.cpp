#include "CorvantaSdkVideo/Editor/EditorFixture.hpp"

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>
#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>

#include <QCoreApplication>
#include <QTest>

#include <boost/asio/post.hpp>

#include <algorithm>
#include <cstdlib>

namespace corvanta::test {

Task<CorvantaSdkVideoEditorResult> FakeEditor::edit(CorvantaSdkVideoEditorInput video) {
    {
        const std::lock_guard lock(mutex_);
        edits_.push_back(video);
    }
    if (gate.valid()) {
        gate.wait();
    }
    if (editError) {
        throw CorvantaSdkVideoError(*editError);
    }
    CorvantaSdkVideoEditorResult result{video.outputURL};
    co_return result;
}

Task<URL> FakeEditor::getThumbnailForVideo(URL, double interval, std::optional<std::int64_t> width,
                                           std::optional<std::int64_t> height) {
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

std::vector<CorvantaSdkVideoEditorInput> FakeEditor::edits() const {
    const std::lock_guard lock(mutex_);
    return edits_;
}

std::vector<FakeEditor::ThumbnailCall> FakeEditor::thumbnailCalls() const {
    const std::lock_guard lock(mutex_);
    return thumbnailCalls_;
}

EditorFixture::EditorFixture() { setenv("XDG_DATA_HOME", directory_.file("data").c_str(), 1); }

void EditorFixture::useRealEditor() { editor_ = std::make_shared<CorvantaSdkVideoEditorImplementation>(); }

void EditorFixture::open(const std::string& video, std::optional<CorvantaSdkVideoFileDescriptor> output) {
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

void EditorFixture::openAndLayOut(const std::string& video, double screenWidth) {
    open(video);
    model_->setupTrimmer(QSizeF(screenWidth, 600));
    ASSERT_TRUE(eventually([this] { return model_->videoDuration() > 0; }));
}

bool EditorFixture::eventually(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 60'000);
}

void EditorFixture::settle() {
    for (int round = 0; round < 4; ++round) {
        std::promise<void> reached;
        boost::asio::post(editorWorker(), [&reached] { reached.set_value(); });
        reached.get_future().wait();
        QCoreApplication::processEvents();
    }
}

int EditorFixture::readyThumbnails() const {
    const QList<QImage> thumbnails = model_->thumbnails();
    return static_cast<int>(
        std::ranges::count_if(thumbnails, [](const QImage& image) { return !image.isNull(); }));
}

} // namespace corvanta::test
