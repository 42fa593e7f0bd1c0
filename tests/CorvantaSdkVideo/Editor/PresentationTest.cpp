#include "CorvantaSdkVideo/Editor/ScreenFixture.hpp"
#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Editor/Presentation/EditorCover.hpp>

#include <QQmlComponent>
#include <QQmlEngine>
#include <stdexcept>

namespace corvanta {
namespace {

using test::colourClip;

class PresentationTest : public test::ScreenFixture {};

TEST_F(PresentationTest, CoversThePresenterOneAtATime) {
    makePresenter();
    present();
    EXPECT_TRUE(eventually([this] { return window_->isExposed(); }));
    EXPECT_EQ(window_->geometry(), presenter_->geometry()) << "though presented before that was placed";
    EXPECT_EQ(window_->transientParent(), presenter_.get());
    const auto presentOver = [this](QWindow* presenter) {
        return presentCorvantaSdkVideoEditorView(
            presenter, CorvantaSdkVideoFile(URL::fromFilePath(colourClip())),
            CorvantaSdkVideoFileDescriptor::custom(folders_.file("again")), [](const auto&) { FAIL(); });
    };
    EXPECT_FALSE(presentOver(presenter_.get())) << "one at a time";
    click("Close");
    ASSERT_TRUE(isClosed());
    EXPECT_THROW(presentOver(nullptr), std::invalid_argument);
}

TEST_F(PresentationTest, GoesUnansweredWithItsPresenter) {
    for (const bool closing : {false, true}) {
        makePresenter();
        present();
        if (closing) {
            click("Close");
        }
        presenter_.reset();
        EXPECT_EQ(window_, nullptr);
        QTest::qWait(10);
    }
    EXPECT_TRUE(results_.empty());
}

TEST_F(PresentationTest, CanLoseItsPresenterInTheAnswer) {
    onAnswer_ = [this] { presenter_.reset(); };
    present();
    window_->close();
    ASSERT_TRUE(isClosed());
    EXPECT_EQ(results_.size(), 1U);
}

TEST_F(PresentationTest, IsPresentedByABindingThatSurvives) {
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(R"(
        import QtQuick
        import QtQuick.Window
        import CorvantaSdkVideo.Editor
        Window {
            property bool editing: false
            property url video
            property int answers: 0
            property var edited
            width: 375; height: 700; visible: true
            PresentVideoEditorModifier {
                objectName: "modifier"
                isPresented: parent.Window.window.editing
                input: parent.Window.window.video
                onCompleted: result => {
                    const host = parent.Window.window
                    host.answers += 1
                    host.edited = result.editedVideoURL
                    host.editing = false
                }
            }
        })",
                      QUrl());
    const std::unique_ptr<QObject> made(component.create());
    auto* const host = qobject_cast<QQuickWindow*>(made.get());
    ASSERT_NE(host, nullptr) << component.errorString().toStdString();
    const QObject* const modifier = host->findChild<QObject*>(QStringLiteral("modifier"));
    const auto open = [&] {
        host->setProperty("editing", true);
        host->setProperty("video", QUrl::fromLocalFile(QString::fromStdString(colourClip())));
        ASSERT_TRUE(eventually([&] {
            takeScreen(host);
            return view_ != nullptr && view_->y() == 0;
        }));
        ASSERT_TRUE(isFileRead());
    };
    const auto isGone = [&] { return eventually([this] { return view_ == nullptr; }); };

    int answers = 0;
    for (const char* const end : {"Close", "Continue"}) {
        open();
        click(end);
        ASSERT_TRUE(isGone());
        EXPECT_EQ(host->property("answers"), ++answers);
        EXPECT_EQ(host->property("edited").isNull(), answers == 1);
        EXPECT_EQ(modifier->property("isPresented"), false);
    }
    const std::string edited = host->property("edited").toUrl().toLocalFile().toStdString();
    EXPECT_GT(test::probed(edited).durationMillis, 3500);

    open();
    host->setProperty("editing", false);
    ASSERT_TRUE(isGone());
    EXPECT_EQ(host->property("answers"), 2) << "the host has closed it by itself";
}

TEST(OrientationManagerTest, TakesTheFirstOrientationThatItKnows) {
    using Mask = OrientationManager::OrientationMask;
    const test::TemporaryDirectory directory;
    const auto listed = [](const std::string& list) {
        return R"({"UISupportedInterfaceOrientations": )" + list + "}";
    };
    const std::string left = R"("UIInterfaceOrientationLandscapeLeft")";
    const std::string right = R"("UIInterfaceOrientationLandscapeRight")";
    for (const auto& [text, mask] : std::vector<std::pair<std::string, Mask>>{
             {"{}", Mask::portrait},
             {"no JSON", Mask::portrait},
             {listed("7"), Mask::portrait},
             {listed("[" + left + ", 7]"), Mask::portrait},
             {listed("[" + left + R"(, "UIInterfaceOrientationPortrait"])"), Mask::portrait},
             {listed("[" + left + "," + right + "]"), Mask::landscapeRight},
             {listed("[]"), Mask::landscapeLeft}}) {
        const std::string file = directory.file("Info.json");
        test::writeFile(file, text);
        const OrientationManager manager(QString::fromStdString(file));
        EXPECT_EQ(manager.supportedOrientation(), mask) << text;
    }
    EXPECT_EQ(OrientationManager(QStringLiteral("/nonexistent/Info.json")).supportedOrientation(),
              Mask::portrait);
}

// In a host that knows landscape alone the layout stays the portrait one, turned by a quarter.
TEST_F(PresentationTest, TurnsItselfInALandscapeHost) {
    for (const auto& [side, closeAt] :
         {std::pair<std::string, QPointF>("Left", {700 - 32, 40}), {"Right", {32, 335}}}) {
        const std::string file = folders_.make(
            "Info.json",
            R"({"UISupportedInterfaceOrientations": ["UIInterfaceOrientationLandscape)" + side + R"("]})");
        OrientationManager orientation(QString::fromStdString(file));
        QQmlEngine engine;
        QQuickWindow window;
        window.resize(700, 375);
        window.show();
        window.contentItem()->setSize(window.size());
        const EditorCover cover(
            engine, *window.contentItem(),
            makeEditorViewModel(CorvantaSdkVideoFile(URL::fromFilePath(colourClip())), {}, {}), orientation);
        takeScreen(&window);
        EXPECT_EQ(model().trimmerInitialWidth(), 375 - 32);
        const QPointF center = control("Close")->mapToScene(QPointF(24, 24));
        EXPECT_LT((center - closeAt).manhattanLength(), 1) << side << center.x() << "," << center.y();
        ASSERT_TRUE(isFileRead());
        dragStrip(12, 100);
        EXPECT_EQ(model().trimmerXOffset(), 88);
    }
}

} // namespace
} // namespace corvanta
