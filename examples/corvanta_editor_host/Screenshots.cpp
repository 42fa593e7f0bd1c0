#include "Screenshots.hpp"

#include "HostWindow.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/OrientationManager.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/PresentCorvantaSdkVideoEditorView.hpp>

#include <QDir>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRasterWindow>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <stdexcept>

using namespace corvanta;

namespace {

using Model = CorvantaSdkVideoEditorViewModel;

/// All of the screen's animations move in this time, if only by a little.
constexpr int animationStepMilliseconds = 60;

void waitFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// Whatever is waited for comes, or comes to its own end.
void waitUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        waitFor(10);
    }
}

// The screen's parts are known by what they can be asked.
QQuickItem* itemBelow(const QQuickItem& item, const char* property) {
    for (QQuickItem* const child : item.childItems()) {
        const bool isMatch = child->metaObject()->indexOfProperty(property) >= 0;
        if (QQuickItem* const match = isMatch ? child : itemBelow(*child, property)) {
            return match;
        }
    }
    return nullptr;
}

// A property of the object that a property names.
QVariant propertyOf(const QObject& owner, const char* part, const char* property) {
    const auto* const object = owner.property(part).value<QObject*>();
    return object != nullptr ? object->property(property) : QVariant();
}

void save(const QImage& picture, const QString& file) {
    if (!picture.save(file)) {
        throw std::runtime_error("Can't write " + file.toStdString());
    }
}

/// An editor in a window.
class Scene {
  public:
    /// The screen is laid out for `orientation`, if there is one.
    explicit Scene(QQuickWindow& window, OrientationManager* orientation = nullptr) : window_(window) {
        waitUntil([this] {
            view_ = itemBelow(*window_.contentItem(), "cutChoice");
            return view_ != nullptr;
        });
        if (orientation != nullptr) {
            view_->setProperty("orientationManager", QVariant::fromValue(orientation));
        }
        waitUntil([this] { return window_.isExposed() && view_->y() == 0; });
        model_ = view_->property("viewModel").value<Model*>();
        if (model_->isAuthenticated()) {
            waitForFile();
        }
        settle();
    }

    Model& model() const { return *model_; }
    bool isAskedToCut() const { return propertyOf(*view_, "cutChoice", "isAsked").toBool(); }
    /// What the screen's buttons do.
    void press(const char* operation) const { QMetaObject::invokeMethod(view_, operation); }

    /// Waits for the picture of the sound, if there is any.
    void waitForSound() const {
        waitUntil([this] {
            return !model_->hasSound() || !propertyOf(*view_, "waveform", "picture").toUrl().isEmpty();
        });
        settle();
    }

    /// Waits until nothing moves any more.
    void settle() const {
        waitUntil([this] { return !model_->videoPlayer().isSeeking(); });
        QImage last;
        QImage now = window_.grabWindow();
        while (std::exchange(last, now) != now || last.isNull()) {
            waitFor(animationStepMilliseconds);
            now = window_.grabWindow();
        }
    }

    void write(const QString& file) const { save(window_.grabWindow(), file); }

    void waitForEdit() const {
        waitUntil([this] { return !model_ || !model_->isTrimming(); });
    }

  private:
    void waitForFile() const {
        waitUntil([this] {
            return model_->isUnreadable() || (model_->isReady() && !model_->isMakingThumbnails());
        });
        const auto* const picture = itemBelow(*view_, "frameAspectRatio");
        waitUntil([this, picture] {
            return !model_->notice().isEmpty() || picture->property("frameAspectRatio").toDouble() > 0;
        });
        const auto isMissing = [](const QImage& image) { return image.isNull(); };
        if (!model_->notice().isEmpty() || std::ranges::any_of(model_->thumbnails(), isMissing)) {
            const std::string reason = model_->notice().toStdString();
            throw std::runtime_error("No screenshot: " +
                                     (reason.empty() ? "a thumbnail can't be made" : reason));
        }
    }

    QQuickWindow& window_;
    QQuickItem* view_ = nullptr;
    QPointer<Model> model_;
};

/// Brings an editor, whose output goes into a directory, into a state.
using Act = std::function<void(const Scene&, QTemporaryDir&)>;

class Stage {
  public:
    Stage(const QString& video, const QString& directory, QSize size)
        : video_(video), directory_(directory), size_(size) {}

    /// Opens the editor over a window, lets `act` bring it into a state, and writes its picture as soon as
    /// `act` returns.
    void show(const char* name, const Act& act) const {
        QTemporaryDir outputs;
        QRasterWindow presenter;
        presenter.resize(size_);
        presenter.show();
        presentCorvantaSdkVideoEditorView(&presenter, input(), outputIn(outputs), {});
        QQuickWindow* editor = nullptr;
        for (QWindow* const window : QGuiApplication::allWindows()) {
            if (window->transientParent() == &presenter) {
                editor = qobject_cast<QQuickWindow*>(window);
            }
        }
        shoot(name, *editor, act, outputs);
    }

    /// The host's own window, as it waits for a video.
    void showHost(const char* name) const {
        HostWindow window({video_});
        window.resize(size_);
        save(window.grab().toImage(), fileOf(name));
    }

    /// The same by the QML module, on a layout for a host's orientation, if there is one.
    void showInQml(const char* name, const Act& act, OrientationManager* orientation = nullptr) const {
        QTemporaryDir outputs;
        const QSize size = orientation != nullptr ? size_.transposed() : size_;
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData(R"(
            import QtQuick
            import CorvantaSdkVideo.Editor
            Window {
                property alias video: modifier.input
                color: "black"
                visible: true
                PresentVideoEditorModifier { id: modifier; isPresented: true }
            })",
                          QUrl());
        const std::unique_ptr<QObject> made(
            component.createWithInitialProperties({{QStringLiteral("video"), QUrl::fromLocalFile(video_)},
                                                   {QStringLiteral("width"), size.width()},
                                                   {QStringLiteral("height"), size.height()}}));
        auto* const window = qobject_cast<QQuickWindow*>(made.get());
        if (window == nullptr) {
            throw std::runtime_error(component.errorString().toStdString());
        }
        shoot(name, *window, act, outputs, orientation);
    }

  private:
    CorvantaSdkVideoFile input() const {
        return CorvantaSdkVideoFile(URL::fromFilePath(video_.toStdString()));
    }
    static CorvantaSdkVideoFileDescriptor outputIn(const QTemporaryDir& outputs) {
        return CorvantaSdkVideoFileDescriptor::custom(
            parseablePath(outputs.filePath(QStringLiteral("edited")).toStdString()));
    }

    QString fileOf(const char* name) const {
        return QDir(directory_).filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
    }

    void shoot(const char* name, QQuickWindow& window, const Act& act, QTemporaryDir& outputs,
               OrientationManager* orientation = nullptr) const {
        const Scene scene(window, orientation);
        act(scene, outputs);
        scene.write(fileOf(name));
        scene.waitForEdit();
    }

    QString video_;
    QString directory_;
    QSize size_;
};

void drag(Model& model, double from, double to) {
    const QSizeF strip(model.trimmerInitialWidth(), Model::trimmerHeight);
    const double step = to > from ? 4 : -4;
    for (double part = from; (to - part) * step > 0; part += step) {
        model.applyTrimming(QPointF(part, strip.height() / 2), QRectF(QPointF(0, 0), strip));
    }
}

void trim(const Scene& scene) {
    const double width = scene.model().trimmerInitialWidth();
    drag(scene.model(), 16, width * 0.2);
    drag(scene.model(), width - 16, width * 0.75);
    scene.settle();
}

void writeLandscape(const Stage& stage, const char* name, const char* orientation) {
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("Info.json"));
    QFile information(file);
    if (!information.open(QIODevice::WriteOnly) ||
        information.write(QByteArray(R"({"UISupportedInterfaceOrientations": [")") + orientation + "\"]}") <
            0) {
        throw std::runtime_error("Can't write " + file.toStdString());
    }
    information.close();
    OrientationManager manager(file);
    stage.showInQml(
        name, [](const Scene& scene, QTemporaryDir&) { trim(scene); }, &manager);
}

void showTools(const Stage& stage) {
    stage.show("sound", [](const Scene& scene, QTemporaryDir&) {
        scene.model().showSound();
        scene.model().changeVolume(QPointF(24, 70), QSizeF(0, 0),
                                   QRectF(0, 0, 48, Model::initialVolumeHeight));
        scene.waitForSound();
    });
    stage.show("muted", [](const Scene& scene, QTemporaryDir&) {
        scene.model().showSound();
        scene.model().muteVideo();
        scene.waitForSound();
    });
    stage.show("rotated", [](const Scene& scene, QTemporaryDir&) {
        scene.model().showRotation();
        scene.model().rotateRight();
        scene.settle();
    });
}

} // namespace

void writeScreenshots(const QString& video, const QString& directory, QSize size) {
    if (!QDir().mkpath(directory)) {
        throw std::runtime_error("Can't make " + directory.toStdString());
    }
    const Stage stage(video, directory, size);
    stage.showHost("host");
    const Act untouched = [](const Scene&, QTemporaryDir&) {};
    const Act trimmed = [](const Scene& scene, QTemporaryDir&) { trim(scene); };
    stage.show("untouched", untouched);
    stage.show("trimmed", trimmed);
    stage.showInQml("in-qml", trimmed);
    stage.show("playing", [](const Scene& scene, QTemporaryDir&) {
        bool hasPlayed = false;
        const auto notice = [&hasPlayed] { hasPlayed = true; };
        const QObject context;
        QObject::connect(&scene.model().videoPlayer(), &MediaPlayer::timeObserved, &context, notice);
        QObject::connect(&scene.model().videoPlayer(), &MediaPlayer::didPlayToEndTime, &context, notice);
        scene.model().handleAction();
        waitUntil([&hasPlayed] { return hasPlayed; });
    });
    showTools(stage);
    stage.show("exact-or-fast", [](const Scene& scene, QTemporaryDir&) {
        trim(scene);
        scene.press("trimVideo");
        // Where copying loses nothing there is nothing to ask.
        waitUntil([&scene] { return scene.isAskedToCut() || scene.model().isTrimming(); });
        scene.settle();
    });
    stage.show("leaving", [](const Scene& scene, QTemporaryDir&) {
        trim(scene);
        scene.press("requestClose");
        scene.settle();
    });
    stage.show("editing", [](const Scene& scene, QTemporaryDir&) {
        trim(scene);
        scene.model().trimVideo({});
    });
    stage.show("error", [](const Scene& scene, QTemporaryDir& outputs) {
        outputs.remove();
        scene.model().trimVideo({});
        waitUntil([&scene] { return scene.model().hasError(); });
        scene.settle();
    });
    writeLandscape(stage, "landscape-right", "UIInterfaceOrientationLandscapeRight");
    writeLandscape(stage, "landscape-left", "UIInterfaceOrientationLandscapeLeft");
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(false));
    stage.show("not-logged-in", untouched);
}
