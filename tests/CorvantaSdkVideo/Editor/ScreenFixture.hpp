#pragma once

#include "support/MediaFixtures.hpp"
#include "support/Patience.hpp"
#include "support/RecordedLog.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/Editor/Presentation/PresentCorvantaSdkVideoEditorView.hpp>
#include <CorvantaSdkVideo/Editor/Views/EditorRoot.hpp>

#include <QGuiApplication>
#include <QPointer>
#include <QQuickWindow>
#include <QRasterWindow>
#include <QTest>

#include <gtest/gtest.h>

namespace corvanta::test {

/// The items below, children after their parents, in the order in which they are painted.
inline std::vector<QQuickItem*> itemsBelow(QQuickItem* item) {
    std::vector<QQuickItem*> items;
    for (QQuickItem* const child : item->childItems()) {
        items.push_back(child);
        const auto below = itemsBelow(child);
        items.insert(items.end(), below.begin(), below.end());
    }
    return items;
}

/// Red for a second, green for one and a half, blue up to the end at four; the right half is white. A tone of
/// 440 Hz.
inline std::string colourClip() {
    static const TemporaryDirectory directory;
    static const std::string path = directory.file("colours.mp4");
    static const std::string made = runTool(
        "ffmpeg",
        wordsOf("-v error -f lavfi -i color=red:s=90x160:r=30:d=1 "
                "-f lavfi -i color=lime:s=90x160:r=30:d=1.5 "
                "-f lavfi -i color=blue:s=90x160:r=30:d=1.5 -f lavfi -i sine=f=440:d=4 -filter_complex "
                "[0][1][2]concat=n=3,drawbox=x=45:y=0:w=45:h=160:color=white:t=fill "
                "-c:v libx264 -preset ultrafast -bf 0 -g 10 -pix_fmt yuv420p -c:a aac " +
                path));
    return path;
}

/// Opens the editor on the real player and editor, and works on its window with a pointer and keys.
class ScreenFixture : public testing::Test {
  protected:
    ScreenFixture() { makePresenter(); }

    void makePresenter() {
        presenter_ = std::make_unique<QRasterWindow>();
        presenter_->resize(375, 700);
        presenter_->show();
    }
    /// Presents the editor for a clip and waits until it is in place.
    void present(const std::string& clip = colourClip()) {
        ASSERT_TRUE(
            presentCorvantaSdkVideoEditorView(presenter_.get(), CorvantaSdkVideoFile(URL::fromFilePath(clip)),
                                              CorvantaSdkVideoFileDescriptor::custom(folders_.file("edited")),
                                              [this](const CorvantaSdkVideoEditorResult& result) {
                                                  results_.push_back(result);
                                                  onAnswer_();
                                              }));
        for (QWindow* const window : QGuiApplication::allWindows()) {
            if (window->transientParent() == presenter_.get()) {
                takeScreen(qobject_cast<QQuickWindow*>(window));
            }
        }
        ASSERT_NE(view_, nullptr);
        ASSERT_TRUE(eventually([this] { return window_->isExposed() && view_->y() == 0; }));
    }
    /// Takes the window and the screen of an editor that was presented over `presenter`, or stands in it.
    void takeScreen(QQuickWindow* window) {
        window_ = window;
        for (QQuickItem* const item : itemsBelow(window->contentItem())) {
            if (qobject_cast<EditorRoot*>(item) != nullptr) {
                view_ = item;
            }
        }
    }
    bool isFileRead() {
        return eventually([this] { return model().videoDuration() > 0; });
    }
    bool isClosed() {
        return eventually([this] { return window_ == nullptr; });
    }

    CorvantaSdkVideoEditorViewModel& model() const {
        return *qobject_cast<EditorRoot*>(view_.get())->viewModel();
    }
    /// The first item of a QML type.
    QQuickItem* block(const char* type) const {
        for (QQuickItem* const item : itemsBelow(view_)) {
            QByteArray name = item->metaObject()->className();
            name = name.mid(name.lastIndexOf(':') + 1);
            if (name.left(name.indexOf("_QML")) == type) {
                return item;
            }
        }
        ADD_FAILURE() << "no " << type;
        return view_;
    }
    /// The shown control of that name; fails the test if there is none.
    QQuickItem* control(const char* label) const {
        // What a tab shows fades in.
        if (!eventually([&] { return isShown(label); })) {
            ADD_FAILURE() << "no control " << label;
            return view_;
        }
        return findShown(label);
    }
    bool isShown(const char* label) const { return findShown(label) != nullptr; }

    void click(QQuickItem* item) const {
        QTest::mouseClick(window_, Qt::LeftButton, {},
                          item->mapToScene(item->boundingRect().center()).toPoint());
    }
    void click(const char* label) const {
        control(label);
        // What has just been made has its place once it has been drawn.
        window_->grabWindow();
        click(control(label));
    }
    /// In the item's coordinates, in small steps, as a hand does it; a fast one needs fewer.
    void drag(QQuickItem* item, QPointF from, QPointF to, int steps = 12) const {
        const auto place = [item](QPointF point) { return item->mapToScene(point).toPoint(); };
        QTest::mousePress(window_, Qt::LeftButton, {}, place(from));
        for (int step = 1; step <= steps; ++step) {
            QTest::mouseMove(window_, place(from + (to - from) * step / steps));
        }
        QTest::mouseRelease(window_, Qt::LeftButton, {}, place(to));
    }
    void dragStrip(double from, double to, int steps = 12) const {
        drag(block("ThumbnailsListView"), QPointF(from, 32), QPointF(to, 32), steps);
    }
    /// What the window shows at a point of an item.
    QColor colourAt(QQuickItem* item, QPointF point) const {
        const QImage image = window_->grabWindow();
        return image.pixelColor((item->mapToScene(point) * image.devicePixelRatio()).toPoint());
    }

    static bool eventually(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, patienceInMilliseconds);
    }

    QQuickItem* findShown(const char* label) const {
        for (QQuickItem* const item : itemsBelow(view_)) {
            if (item->isVisible() && item->property("label").toString() == QLatin1String(label)) {
                return item;
            }
        }
        return nullptr;
    }

    UserFolders folders_;
    RecordedLog log_;
    std::unique_ptr<QWindow> presenter_;
    QPointer<QQuickWindow> window_;
    QPointer<QQuickItem> view_;
    std::vector<CorvantaSdkVideoEditorResult> results_;
    std::function<void()> onAnswer_ = [] {};
};

} // namespace corvanta::test
