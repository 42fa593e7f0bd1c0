#include "VideoFiles.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <exception>

using namespace corvanta;

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
    } catch (const CorvantaSdkVideoError& error) {
        if (error.kind() == CorvantaSdkVideoError::userNotAuthenticated) {
            return "";
        }
    } catch (const std::exception&) {
    }
    return file.toStdString() + " can't be read as a video";
}

QString placeForEdit(const QString& video) {
    const QFileInfo input(video);
    QDir folder = input.absoluteDir();
    if (!QFileInfo(folder.path()).isWritable()) {
        folder.setPath(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
        folder.mkpath(QStringLiteral("."));
    }
    const QString name = input.completeBaseName() + QStringLiteral("-edited");
    QString place = folder.filePath(name);
    for (int number = 2; QFileInfo::exists(place + QStringLiteral(".mp4")); ++number) {
        place = folder.filePath(QStringLiteral("%1-%2").arg(name).arg(number));
    }
    return place;
}
