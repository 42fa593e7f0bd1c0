#pragma once

#include <QIODevice>
#include <QStringList>

/// The videos in a desktop's list of recently used files (recently-used.xbel), the last one used first: those
/// that are still there and that no program has marked as private. What follows a damaged place in it is left
/// out.
QStringList recentVideos(QIODevice& list, qsizetype most = 6);

/// The same of this user's desktop. It is only read: what stands in it, and for how long, is the desktop's to
/// say.
QStringList recentVideos();
