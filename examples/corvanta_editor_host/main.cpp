#include "HostWindow.hpp"
#include "RecentVideos.hpp"
#include "Screenshots.hpp"
#include "VideoFiles.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>

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

/// The path without the extension that the edited file gets anyway.
QString withoutExtension(const QString& path) {
    const QString added = QStringLiteral(".mp4");
    return path.endsWith(added, Qt::CaseInsensitive) ? path.chopped(added.size()) : path;
}

/// Opens the window: on a video if there is one, else with a question for it.
int show(const QStringList& files, QSize size, bool offersRecent) {
    HostWindow window(offersRecent ? recentVideos() : QStringList());
    window.resize(size);
    window.show();
    if (files.isEmpty()) {
        // Once it has its place on the screen, which the dialog takes its own from.
        QTimer::singleShot(0, &window, &HostWindow::choose);
    } else {
        window.edit(files[0], files.size() > 1 ? QFileInfo(withoutExtension(files[1])).absoluteFilePath()
                                               : placeForEdit(files[0]));
    }
    return QApplication::exec();
}

} // namespace

int main(int argumentCount, char** arguments) {
    // Pictures need no display.
    const auto isScreenshot = [](std::string_view argument) { return argument.starts_with("--screenshot"); };
    if (std::any_of(arguments, arguments + argumentCount, isScreenshot)) {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
    }
    QApplication::setApplicationName(QStringLiteral("corvanta_editor_host"));
    QApplication::setApplicationDisplayName(QStringLiteral("Corvanta editor"));
    QApplication::setDesktopFileName(QStringLiteral("com.corvanta.editor_host"));
    const QApplication application(argumentCount, arguments);
    QApplication::setWindowIcon(QIcon::fromTheme(QApplication::desktopFileName()));
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
    const QCommandLineOption noRecent(
        QStringLiteral("no-recent"),
        QStringLiteral("Don't offer the videos in the desktop's list of recently used files."));
    parser.addOptions({screenshot, windowSize, noRecent, loggedOut});
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Video file; without one the window asks for it."),
                                 QStringLiteral("[FILE"));
    parser.addPositionalArgument(QStringLiteral("OUT"),
                                 QStringLiteral("Where to write the mp4 file, with or without extension."),
                                 QStringLiteral("[OUT]]"));
    parser.process(application);

    const QStringList files = parser.positionalArguments();
    const QSize size = sizeOf(parser.value(windowSize));
    if (files.size() > 2 || size.isEmpty() || (files.isEmpty() && parser.isSet(screenshot))) {
        parser.showHelp(EXIT_FAILURE);
    }
    FFmpegKitConfig::setLogLevel("error");
    setConsoleSink(nullptr);
    // Files come from anywhere.
    FFmpegKitConfig::setRunLimits(recommendedRunLimits());
    SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<ErrorLog>());
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    if (const std::string reason = files.isEmpty() ? "" : reasonAgainst(files[0]); !reason.empty()) {
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
        return show(files, size, !parser.isSet(noRecent));
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}
