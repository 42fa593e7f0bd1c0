#include "CorvantaSdkVideo/Editor/EditorFixture.hpp"

#include <gmock/gmock.h>

namespace corvanta {
namespace {

namespace fs = std::filesystem;
using test::makeClip;
using testing::IsEmpty;

class EditorCourseTest : public test::EditorFixture {
  protected:
    void confirm() {
        model_->trimVideo([this] { ++handled_; });
    }
    void close() {
        model_->closeTrimmer([this] { ++handled_; });
    }
    bool edited() {
        return eventually([this] { return !model_->isTrimming(); });
    }
};

TEST_F(EditorCourseTest, WritesToANewNameWithoutAUsableOne) {
    std::vector<URL> fresh;
    for (const auto& output : {std::optional<CorvantaSdkVideoFileDescriptor>(),
                               std::optional(CorvantaSdkVideoFileDescriptor::custom("http://[half/x"))}) {
        open(makeClip({}), output);
        const fs::path path = model_->outputURL().path();
        EXPECT_EQ(path.parent_path(), documents());
        EXPECT_EQ(path.extension(), ".mp4");
        EXPECT_EQ(path.stem().string().size(), 36U);
        fresh.push_back(model_->outputURL());
    }
    EXPECT_NE(fresh[0], fresh[1]);
}

TEST_F(EditorCourseTest, HandsTheWholeStateToTheEdit) {
    openAndLayOut(makeClip({.seconds = 2, .rotation = -90}));
    model_->applyTrimming(QPointF(50, 1), QRectF(0, 0, 343, 64));
    model_->applyTrimming(QPointF(290, 1), QRectF(0, 0, 343, 64));
    model_->changeVolume(QPointF(1, 96), QSizeF(0, 1), QRectF(0, 0, 48, 192));
    for (int turns = 0; turns < 3; ++turns) {
        model_->rotateLeft();
    }
    confirm();
    EXPECT_TRUE(model_->isTrimming());
    ASSERT_TRUE(edited());
    ASSERT_EQ(fakeEditor_->edits().size(), 1U);
    const CorvantaSdkVideoEditorInput input = fakeEditor_->edits().front();
    EXPECT_EQ(input.videoURL, model_->videoURL());
    EXPECT_EQ(input.outputURL, model_->outputURL());
    EXPECT_EQ(input.startPosition, model_->trimmerStart());
    EXPECT_EQ(input.endPosition, model_->stopAt());
    EXPECT_EQ(input.rotationAngle, -270 - 90);
    EXPECT_EQ(input.volumen, 0.5F);
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().editedVideoURL, model_->outputURL());
    EXPECT_EQ(handled_, 1);
}

TEST_F(EditorCourseTest, EndsOnceHoweverOftenItIsAsked) {
    std::promise<void> gate;
    fakeEditor_->gate = gate.get_future().share();
    open(makeClip({}));
    log_.take();
    confirm();
    confirm();
    close();
    ASSERT_TRUE(eventually([&] { return fakeEditor_->edits().size() == 1; }));
    EXPECT_THAT(results_, IsEmpty());
    gate.set_value();
    ASSERT_TRUE(edited());
    confirm();
    close();
    settle();
    EXPECT_EQ(fakeEditor_->edits().size(), 1U);
    EXPECT_EQ(results_.size(), 1U);
    EXPECT_EQ(handled_, 1);
    EXPECT_FALSE(model_->isTrimming());
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_F(EditorCourseTest, NoticesThatTheFileHasGone) {
    useRealEditor();
    const std::string clip = directory_.file("clip.mp4");
    fs::copy_file(makeClip({}), clip);
    openAndLayOut(clip);
    fs::remove(clip);
    confirm();
    ASSERT_TRUE(edited());
    EXPECT_EQ(model_->error(), CorvantaSdkVideoError(CorvantaSdkVideoError::trimFailed));
    EXPECT_THAT(results_, IsEmpty());
    EXPECT_EQ(handled_, 0);
}

TEST_F(EditorCourseTest, CanBeDestroyedWhileItsTasksRun) {
    const std::weak_ptr<test::FakeEditor> alive = fakeEditor_;
    std::promise<void> gate;
    fakeEditor_->gate = gate.get_future().share();
    openAndLayOut(makeClip({.seconds = 2}));
    ASSERT_TRUE(eventually([&] { return fakeEditor_->thumbnailCalls().size() == 2; }));
    confirm();
    QCoreApplication::processEvents();
    model_.reset();
    gate.set_value();
    settle();
    EXPECT_EQ(fakeEditor_->thumbnailCalls().size(), 2U);
    EXPECT_THAT(results_, IsEmpty());
    EXPECT_EQ(handled_, 0);

    openAndLayOut(makeClip({.seconds = 2}));
    close();
    model_.reset();
    editor_.reset();
    fakeEditor_.reset();
    EXPECT_TRUE(eventually([&] { return alive.expired(); }));
    EXPECT_THAT(results_, IsEmpty());
}

TEST_F(EditorCourseTest, CanBeDestroyedByTheCompletion) {
    onCompletion_ = [this] { model_.reset(); };
    for (const auto& end : std::vector<std::function<void()>>{[this] { confirm(); }, [this] { close(); }}) {
        open(makeClip({}));
        results_.clear();
        end();
        ASSERT_TRUE(eventually([this] { return results_.size() == 1; }));
        settle();
        EXPECT_EQ(model_, nullptr);
        EXPECT_EQ(handled_, 0);
    }
}

} // namespace
} // namespace corvanta
