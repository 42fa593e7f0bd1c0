#pragma once

#include <QString>

#include <string>

/// Why a file can't be edited; empty if it can, or if nobody is logged in, which the editor's screen says.
std::string reasonAgainst(const QString& file);

/// Where the edit of `video` goes if nobody says so: "NAME-edited", with a number if that is taken, beside it
/// or, where nothing may be written, among the user's videos. Without the extension, which is "mp4".
QString placeForEdit(const QString& video);
