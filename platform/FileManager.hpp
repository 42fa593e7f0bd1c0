#pragma once

#include <string>
#include <string_view>
#include <system_error>

/// File helpers on plain, decoded paths. A path that holds a NUL byte names no file.
namespace corvanta::FileManager {

/// Whether anything, a directory included, is at `path`.
bool fileExists(const std::string& path);

/// Whether reading `path` could wait for somebody else: a pipe, a socket or a character device.
bool isEndless(const std::string& path);

/// Whether both paths lead to one existing file, links included.
bool isSameFile(const std::string& left, const std::string& right);

/// Writes `contents` to `path`, replacing what is there. False if that failed, as with a pipe or a device.
bool createFile(const std::string& path, std::string_view contents = {});

/// Makes an empty file. False if that failed, as where anything is already, be it a link that leads nowhere.
bool createNewFile(const std::string& path);

/// Removes the file at `path`. Throws std::system_error if it is not there or can't be removed.
void removeItem(const std::string& path);

} // namespace corvanta::FileManager
