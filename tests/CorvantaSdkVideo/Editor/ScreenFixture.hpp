#pragma once

#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <QColor>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRasterWindow>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvanta::test {

/// Opens the editor on the real player and editor, and works on its window with a pointer and keys.
class ScreenFixture : public testing::Test {
  protected:
    ScreenFixture();

    void makePresenter();
    /// Presents the editor for the colour clip and waits until it is in place.
    void present();
    /// Takes the window and the screen of an editor that was presented over `presenter`, or stands in it.
    void takeScreen(QQuickWindow* window);
    bool isFileRead();
    bool isClosed();

    CorvantaSdkVideoEditorViewModel& model() const;
    /// The first item of a QML type.
    QQuickItem* block(const char* type) const;
    /// The shown control of that name; fails the test if there is none.
    QQuickItem* control(const char* label) const;
    bool isShown(const char* label) const { return findShown(label) != nullptr; }

    void click(QQuickItem* item) const;
    void click(const char* label) const { click(control(label)); }
    /// In the item's coordinates, in small steps, as a hand does it.
    void drag(QQuickItem* item, QPointF from, QPointF to) const;
    void dragStrip(double from, double to) const;
    /// What the window shows at a point of an item.
    QColor colourAt(QQuickItem* item, QPointF point) const;

    static bool eventually(const std::function<bool()>& condition);

    QQuickItem* findShown(const char* label) const;

    UserFolders folders_;
    RecordedLog log_;
    std::unique_ptr<QWindow> presenter_;
    QPointer<QQuickWindow> window_;
    QPointer<QQuickItem> view_;
    std::vector<CorvantaSdkVideoEditorResult> results_;
    std::function<void()> onAnswer_ = [] {};
};

/// Red for a second, green for one and a half, blue up to the end at four; the right half is white. A tone of
/// 440 Hz.
std::string colourClip();

/// The items below, children after their parents, in the order in which they are painted.
std::vector<QQuickItem*> itemsBelow(QQuickItem* item);

} // namespace corvanta::test
