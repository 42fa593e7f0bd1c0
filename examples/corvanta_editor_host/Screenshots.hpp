#pragma once

#include <QSize>
#include <QString>

/// Writes one PNG file for each state of the editor on `video` into `directory`, which is made if it isn't
/// there. Throws std::runtime_error if one can't be reached or written.
void writeScreenshots(const QString& video, const QString& directory, QSize size);
