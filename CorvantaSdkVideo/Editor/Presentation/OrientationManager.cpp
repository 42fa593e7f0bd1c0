#include <CorvantaSdkVideo/Editor/Presentation/OrientationManager.hpp>

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace corvanta {

namespace {

using Mask = OrientationManager::OrientationMask;

Mask orientationIn(const QString& informationFile) {
    QFile file(informationFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return Mask::portrait;
    }
    const QJsonValue listed = QJsonDocument::fromJson(file.readAll())["UISupportedInterfaceOrientations"];
    const QJsonArray orientations = listed.toArray();
    const bool isListOfTexts =
        listed.isArray() && std::all_of(orientations.begin(), orientations.end(),
                                        [](const QJsonValue& v) { return v.isString(); });
    if (!isListOfTexts || orientations.contains(QStringLiteral("UIInterfaceOrientationPortrait"))) {
        return Mask::portrait;
    }
    return orientations.contains(QStringLiteral("UIInterfaceOrientationLandscapeRight"))
               ? Mask::landscapeRight
               : Mask::landscapeLeft;
}

} // namespace

OrientationManager::OrientationManager(const QString& informationFile)
    : supportedOrientation_(orientationIn(informationFile)) {}

OrientationManager& OrientationManager::shared() {
    static OrientationManager manager(QCoreApplication::applicationDirPath() + QStringLiteral("/Info.json"));
    return manager;
}

} // namespace corvanta
