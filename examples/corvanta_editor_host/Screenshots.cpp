#include "Screenshots.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/EditorCover.hpp>

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <functional>
#include <stdexcept>

using namespace corvanta;

namespace {

using Model = CorvantaSdkVideoEditorViewModel;

constexpr int longestWaitMilliseconds = 60'000;
/// All of the screen's animations are shorter.
constexpr int settlingMilliseconds = 600;

void waitFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

void waitUntil(const char* what, const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(longestWaitMilliseconds);
    while (!condition()) {
        if (deadline.hasExpired()) {
            throw std::runtime_error(std::string("No screenshot, since this never came: ") + what);
        }
        waitFor(20);
    }
}

/// Brings an editor, whose output goes into a directory, into a state.
using Act = std::function<void(Model&, QTemporaryDir&)>;

class Stage {
  public:
    Stage(const QString& video, const QString& directory, QSize size)
        : video_(CorvantaSdkVideoFile(URL::fromFilePath(video.toStdString()))), directory_(directory),
          size_(size) {}

    /// Opens the editor, lets `act` bring it into a state, and writes its picture as soon as `act` returns.
    void show(const char* name, const Act& act,
              OrientationManager& orientation = OrientationManager::shared()) const {
        QTemporaryDir outputs;
        QQmlEngine engine;
        QQuickWindow window;
        window.setColor(Qt::black);
        window.resize(orientation.isPortraitModeSupported() ? size_ : size_.transposed());
        window.show();
        window.contentItem()->setSize(window.size());
        const auto output = CorvantaSdkVideoFileDescriptor::custom(
            parseablePath(outputs.filePath(QStringLiteral("edited")).toStdString()));
        const EditorCover cover(engine, *window.contentItem(), makeEditorViewModel(video_, output, {}),
                                orientation);
        Model& model = cover.viewModel();
        if (model.isAuthenticated()) {
            waitUntil("the thumbnails", [&model] {
                return std::ranges::none_of(model.thumbnails(),
                                            [](const QImage& image) { return image.isNull(); });
            });
        }
        act(model, outputs);
        write(window, name);
        waitUntil("the edit's end", [&model] { return !model.isTrimming(); });
    }

  private:
    void write(QQuickWindow& window, const char* name) const {
        const QString file = QDir(directory_).filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
        if (!window.grabWindow().save(file)) {
            throw std::runtime_error("Can't write " + file.toStdString());
        }
    }

    CorvantaSdkVideoFile video_;
    QString directory_;
    QSize size_;
};

void settle() { waitFor(settlingMilliseconds); }

void drag(Model& model, double from, double to) {
    const QSizeF strip(model.trimmerInitialWidth(), Model::trimmerHeight);
    const double step = to > from ? 8 : -8;
    for (double part = from; (to - part) * step > 0; part += step) {
        model.applyTrimming(QPointF(part, strip.height() / 2), QRectF(QPointF(0, 0), strip));
    }
}

void trim(Model& model) {
    const double width = model.trimmerInitialWidth();
    drag(model, 16, width * 0.2);
    drag(model, width - 16, width * 0.75);
    settle();
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
    stage.show(
        name, [](Model& model, QTemporaryDir&) { trim(model); }, manager);
}

} // namespace

void writeScreenshots(const QString& video, const QString& directory, QSize size) {
    if (!QDir().mkpath(directory)) {
        throw std::runtime_error("Can't make " + directory.toStdString());
    }
    const Stage stage(video, directory, size);
    stage.show("untouched", [](Model&, QTemporaryDir&) { settle(); });
    stage.show("trimmed", [](Model& model, QTemporaryDir&) { trim(model); });
    stage.show("playing", [](Model& model, QTemporaryDir&) {
        model.handleAction();
        settle();
        settle();
    });
    stage.show("sound", [](Model& model, QTemporaryDir&) {
        model.showSound();
        model.changeVolume(QPointF(24, 70), QSizeF(0, 0), QRectF(0, 0, 48, Model::initialVolumeHeight));
        settle();
    });
    stage.show("muted", [](Model& model, QTemporaryDir&) {
        model.showSound();
        model.muteVideo();
        settle();
    });
    stage.show("rotated", [](Model& model, QTemporaryDir&) {
        model.showRotation();
        model.rotateRight();
        settle();
    });
    stage.show("editing", [](Model& model, QTemporaryDir&) {
        trim(model);
        model.trimVideo({});
    });
    stage.show("error", [](Model& model, QTemporaryDir& outputs) {
        outputs.remove();
        model.trimVideo({});
        waitUntil("the error", [&model] { return model.hasError(); });
        settle();
    });
    writeLandscape(stage, "landscape-right", "UIInterfaceOrientationLandscapeRight");
    writeLandscape(stage, "landscape-left", "UIInterfaceOrientationLandscapeLeft");
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(false));
    stage.show("not-logged-in", [](Model&, QTemporaryDir&) { settle(); });
}
