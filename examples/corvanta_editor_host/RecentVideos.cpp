#include "RecentVideos.hpp"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <QXmlStreamReader>

#include <algorithm>
#include <vector>

namespace {

struct Entry {
    QString path;
    QDateTime used;
    bool isVideo = false;
    bool isPrivate = false;
};

/// The reader stands on the start of a bookmark.
Entry readBookmark(QXmlStreamReader& reader) {
    const auto attributes = reader.attributes();
    Entry entry;
    entry.path = QUrl(attributes.value(QLatin1String("href")).toString()).toLocalFile();
    for (const char* const name : {"modified", "visited"}) {
        const QDateTime time =
            QDateTime::fromString(attributes.value(QLatin1String(name)).toString(), Qt::ISODateWithMs);
        if (time.isValid() && (!entry.used.isValid() || time > entry.used)) {
            entry.used = time;
        }
    }
    for (int depth = 1; depth > 0 && !reader.atEnd();) {
        const auto token = reader.readNext();
        depth += token == QXmlStreamReader::StartElement ? 1 : token == QXmlStreamReader::EndElement ? -1 : 0;
        if (token == QXmlStreamReader::StartElement) {
            entry.isPrivate = entry.isPrivate || reader.name() == QLatin1String("private");
            entry.isVideo =
                entry.isVideo ||
                (reader.name() == QLatin1String("mime-type") &&
                 reader.attributes().value(QLatin1String("type")).startsWith(QLatin1String("video/")));
        }
    }
    return entry;
}

} // namespace

QStringList recentVideos(QIODevice& list, qsizetype most) {
    std::vector<Entry> entries;
    QXmlStreamReader reader(&list);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement &&
            reader.name() == QLatin1String("bookmark")) {
            Entry entry = readBookmark(reader);
            if (!reader.hasError() && entry.isVideo && !entry.isPrivate && !entry.path.isEmpty()) {
                entries.push_back(std::move(entry));
            }
        }
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& left, const Entry& right) { return left.used > right.used; });
    QStringList paths;
    for (const Entry& entry : entries) {
        if (paths.size() == most) {
            break;
        }
        if (QFileInfo(entry.path).isFile()) {
            paths.append(entry.path);
        }
    }
    return paths;
}

QStringList recentVideos() {
    QFile list(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
               QStringLiteral("/recently-used.xbel"));
    return list.open(QIODevice::ReadOnly) ? recentVideos(list) : QStringList();
}
