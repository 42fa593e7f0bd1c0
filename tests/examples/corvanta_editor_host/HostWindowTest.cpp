#include "HostWindow.hpp"
#include "RecentVideos.hpp"
#include "VideoFiles.hpp"
#include "support/MediaFixtures.hpp"
#include "support/Patience.hpp"
#include "support/Processes.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <QApplication>
#include <QBuffer>
#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QTest>

#include <gmock/gmock.h>

namespace corvanta {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class HostApplication : public testing::Environment {
  public:
    void SetUp() override {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        application_ = std::make_unique<QApplication>(count_, arguments_);
        QApplication::setQuitOnLastWindowClosed(false);
        FFmpegKitConfig::setLogLevel("error");
        SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    }
    void TearDown() override { application_.reset(); }

  private:
    int count_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
};

const auto* const environment =
    testing::AddGlobalTestEnvironment(std::make_unique<HostApplication>().release());

bool comes(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, test::patienceInMilliseconds);
}

class HostWindowTest : public testing::Test {
  protected:
    void SetUp() override {
        host_.resize(390, 844);
        host_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&host_, test::patienceInMilliseconds));
        fs::copy_file(test::makeClip({.seconds = 1}), folders_.file("clip.mp4"));
    }

    QWindow* editor() const {
        for (QWindow* const window : QGuiApplication::allWindows()) {
            if (window->transientParent() == host_.windowHandle() && window->inherits("QQuickWindow")) {
                return window;
            }
        }
        return nullptr;
    }

    /// As it comes from another program, by the window. False if it is refused.
    bool drop(const QMimeData& data) {
        const QPoint place(100, 100);
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QCoreApplication::sendEvent(host_.windowHandle(), &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(host_.windowHandle(), &event);
        return event.isAccepted();
    }
    bool drop(const std::vector<std::string>& urls) {
        QMimeData data;
        QList<QUrl> list;
        for (const std::string& url : urls) {
            list.append(QUrl(QString::fromStdString(url)));
        }
        data.setUrls(list);
        return drop(data);
    }

    void leaveEditor() {
        ASSERT_TRUE(comes([this] { return editor() != nullptr && editor()->isVisible(); }));
        EXPECT_TRUE(host_.isEditing());
        editor()->close();
        ASSERT_TRUE(comes([this] { return !host_.isEditing(); }));
        EXPECT_EQ(host_.message(), "Left without an edit");
    }

    test::UserFolders folders_;
    HostWindow host_{{}};
};

TEST_F(HostWindowTest, OpensWhatIsDroppedOnIt) {
    const std::string clip = "file://" + folders_.file("clip.mp4");
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(drop({clip}));
        ASSERT_TRUE(comes([this] { return host_.isEditing(); })) << host_.message().toStdString();
        EXPECT_FALSE(drop({clip})) << "there is a video in the editor";
        leaveEditor();
    }

    folders_.make("notes.mp4", "no video");
    for (const auto& [urls, said] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{clip, clip}, "One video at a time"},
             {{"file://" + folders_.file("notes.mp4")}, "can't be read as a video"},
             {{"file://" + folders_.folder().string()}, "is a folder"},
             {{"file://" + folders_.file("missing.mp4")}, "There is no file"}}) {
        EXPECT_TRUE(drop(urls)) << said;
        EXPECT_TRUE(comes([&, &text = said] {
            return host_.message().contains(QString::fromStdString(text));
        })) << said
            << ", not " << host_.message().toStdString();
    }
    QMimeData text;
    text.setText(QString::fromStdString(clip));
    EXPECT_FALSE(drop(text));
    EXPECT_FALSE(drop({"https://example.org/clip.mp4"}));
    EXPECT_EQ(editor(), nullptr);
}

TEST_F(HostWindowTest, OpensWhatIsChosenAndForgetsIt) {
    test::ScopedVariable config("XDG_CONFIG_HOME", folders_.file("config"));
    host_.choose();
    auto* const dialog = host_.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    dialog->setDirectory(QString::fromStdString(folders_.folder()));
    dialog->selectFile(QString::fromStdString(folders_.file("clip.mp4")));
    QMetaObject::invokeMethod(dialog, "accept");
    leaveEditor();
    host_.choose(); // The first one goes, and would leave its folders.
    EXPECT_FALSE(fs::exists(folders_.file("config/QtProject.conf")));
}

TEST_F(HostWindowTest, WritesBesideTheVideoOverNothing) {
    const auto place = [this] {
        return placeForEdit(QString::fromStdString(folders_.file("clip.mp4"))).toStdString();
    };
    EXPECT_EQ(place(), folders_.file("clip-edited"));
    folders_.make("clip-edited.mp4");
    folders_.make("clip-edited-2.mp4");
    EXPECT_EQ(place(), folders_.file("clip-edited-3"));
}

TEST(RecentVideosTest, AreTheDesktopsThatMayBeShown) {
    const test::UserFolders folders;
    const auto entry = [&folders](const std::string& name, const std::string& day,
                                  const std::string& info = {}, const std::string& type = "video/mp4") {
        return "<bookmark href=\"file://" + folders.file(name) + "\" modified=\"2026-01-" + day +
               "T10:00:00.123456Z\"><info><metadata><mime:mime-type type=\"" + type + "\"/>" + info +
               "</metadata></info></bookmark>";
    };
    for (const char* const name : {"old.mp4", "new clip.mp4", "private.mp4", "letter.pdf"}) {
        folders.make(name);
    }
    const std::string beginning =
        R"(<?xml version="1.0"?><xbel version="1.0" xmlns:bookmark="b" xmlns:mime="m">)" +
        entry("old.mp4", "02") + entry("gone.mp4", "09") + entry("private.mp4", "08", "<bookmark:private/>") +
        entry("letter.pdf", "07", "", "application/pdf") + entry("new%20clip.mp4", "05");
    const auto found = [](const std::string& text, qsizetype most) {
        QByteArray bytes = QByteArray::fromStdString(text);
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        std::vector<std::string> names;
        for (const QString& path : recentVideos(buffer, most)) {
            names.push_back(fs::path(path.toStdString()).filename());
        }
        return names;
    };
    EXPECT_THAT(found(beginning + "</xbel>", 6), ElementsAre("new clip.mp4", "old.mp4"));
    EXPECT_THAT(found(beginning + "</xbel>", 1), ElementsAre("new clip.mp4"));
    EXPECT_THAT(found(beginning + "<bookmark <", 6), ElementsAre("new clip.mp4", "old.mp4"))
        << "a damaged end";
    EXPECT_THAT(found("", 6), ElementsAre());
}

} // namespace
} // namespace corvanta
