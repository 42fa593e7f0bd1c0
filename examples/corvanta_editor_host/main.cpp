#include "ResultWindow.hpp"
#include "Screenshots.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/PresentCorvantaSdkVideoEditorView.hpp>

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

using namespace corvanta;

namespace {

/// Standard output is for the result alone.
class ErrorLog : public SharedCorvantaSdkLogSink {
  public:
    void addLog(const SharedCorvantaSdkLog& record) override {
        if (record.severity == SharedCorvantaSdkLogSeverity::error) {
            std::fprintf(stderr, "%s %s\n", record.message.c_str(), record.details.c_str());
        }
    }
};

int fail(const std::string& reason) {
    std::fprintf(stderr, "corvanta_editor_host: %s\n", reason.c_str());
    return EXIT_FAILURE;
}

/// "390x844"; an empty size if the text is none.
QSize sizeOf(const QString& text) {
    const QStringList sides = text.split(QLatin1Char('x'));
    return sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
}

/// Why a file can't be edited; empty if it can.
std::string reasonAgainst(const QString& file) {
    const QFileInfo info(file);
    if (info.isDir()) {
        return file.toStdString() + " is a folder";
    }
    if (!info.exists()) {
        return "There is no file " + file.toStdString();
    }
    const CorvantaSdkVideoFile video(URL::fromFilePath(info.absoluteFilePath().toStdString()));
    try {
        const auto information = runBlocking(CorvantaSdkVideo->getVideosInformation({video}));
        return information.front().videos.empty() ? "There is no picture in " + file.toStdString() : "";
    } catch (const std::exception&) {
        return file.toStdString() + " can't be read as a video";
    }
}

/// The path without the extension that the edited file gets anyway.
QString withoutExtension(const QString& path) {
    const QString added = QStringLiteral(".mp4");
    return path.endsWith(added, Qt::CaseInsensitive) ? path.chopped(added.size()) : path;
}

int edit(const QString& video, const CorvantaSdkVideoFileDescriptor& output, QSize size) {
    ResultWindow window(QString{});
    window.resize(size);
    window.show();
    presentCorvantaSdkVideoEditorView(&window, CorvantaSdkVideoFile(URL::fromFilePath(video.toStdString())),
                                      output, [&window](const CorvantaSdkVideoEditorResult& result) {
                                          if (!result.editedVideoURL) {
                                              window.setText(QStringLiteral("Left without an edit"));
                                              return;
                                          }
                                          const std::string path = result.editedVideoURL->path();
                                          std::printf("%s\n", path.c_str());
                                          std::fflush(stdout);
                                          window.setText(QString::fromStdString(path));
                                      });
    return QGuiApplication::exec();
}

} // namespace

int main(int argumentCount, char** arguments) {
    // Pictures need no display.
    const auto isScreenshot = [](std::string_view argument) { return argument.starts_with("--screenshot"); };
    if (std::any_of(arguments, arguments + argumentCount, isScreenshot)) {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
    }
    const QGuiApplication application(argumentCount, arguments);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Opens the editor on a video file."));
    parser.addHelpOption();
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Write a PNG file of each state into DIR and end; "
                                                       "with QT_QPA_PLATFORM=offscreen no window shows."),
                                        QStringLiteral("DIR"));
    const QCommandLineOption windowSize(QStringLiteral("size"),
                                        QStringLiteral("Size of the window in points."),
                                        QStringLiteral("WxH"), QStringLiteral("390x844"));
    const QCommandLineOption loggedOut(QStringLiteral("logged-out"), QStringLiteral("Nobody is logged in."));
    parser.addOptions({screenshot, windowSize, loggedOut});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Video file."));
    parser.addPositionalArgument(QStringLiteral("OUT"),
                                 QStringLiteral("Where to write the mp4 file, with or without extension."),
                                 QStringLiteral("[OUT]"));
    parser.process(application);

    const QStringList files = parser.positionalArguments();
    const QSize size = sizeOf(parser.value(windowSize));
    if (files.isEmpty() || files.size() > 2 || size.isEmpty()) {
        parser.showHelp(EXIT_FAILURE);
    }
    FFmpegKitConfig::setLogLevel("error");
    setConsoleSink(nullptr);
    // Files come from anywhere.
    FFmpegKitConfig::setRunLimits(recommendedRunLimits());
    SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<ErrorLog>());
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    if (const std::string reason = reasonAgainst(files[0]); !reason.empty()) {
        return fail(reason);
    }
    if (parser.isSet(loggedOut)) {
        SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(false));
    }
    try {
        if (parser.isSet(screenshot)) {
            writeScreenshots(files[0], parser.value(screenshot), size);
            return EXIT_SUCCESS;
        }
        const QFileInfo input(files[0]);
        const QString output =
            files.size() > 1
                ? QFileInfo(withoutExtension(files[1])).absoluteFilePath()
                : input.absoluteDir().filePath(input.completeBaseName() + QStringLiteral("-edited"));
        return edit(files[0], CorvantaSdkVideoFileDescriptor::custom(parseablePath(output.toStdString())),
                    size);
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}
