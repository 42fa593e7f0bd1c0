#pragma once

#include <platform/FolderNames.hpp>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A reference to a file that outlives its being moved or renamed.
///
/// A bookmark is a string of opaque bytes, good for storing, on the machine that made it. It holds the path
/// and the file's identity: its device, inode number and time of birth. Inode numbers are reused at once, and
/// birth times are only as fine as the kernel's clock tick; so a bookmark that is made within moments of the
/// file's birth also holds the kernel's file handle, whose generation number tells the two files apart.
namespace corvanta {

/// Nothing if no file is at `path`, or if its file system keeps no birth times. Symbolic links are followed.
/// A relative path is taken from the working directory. On a file system without file handles the call waits
/// until the birth of a file just made is a moment ago, for less than a tenth of a second.
std::optional<std::string> makeFileBookmark(const std::string& path);

/// Finds bookmarked files again, in passes over some bookmarks each. It remembers the folders that it has
/// searched until they change. For one thread at a time.
class FileBookmarkResolver {
  public:
    /// The file's present path: the bookmarked one, or a place in the same folder or in one of the module's
    /// directories. Nothing if the file is not found there, or if the bytes are no bookmark. What is found is
    /// always the bookmarked file itself, never another that has taken its place, name or inode number.
    ///
    /// The search has bounds: a file is missed that stands behind the first 100,000 entries of a folder, or
    /// that the reading of folders has not come to within `searchTime` in one pass.
    std::optional<std::string> resolve(std::string_view bookmark);

    /// From here on folders that have changed are read again.
    void beginPass();

    static constexpr std::chrono::milliseconds searchTime{500};

  private:
    struct Known {
        FolderNames names;
        // In this pass.
        bool isLookedAt;
    };

    const FolderNames& namesIn(const std::string& folder);

    std::map<std::string, Known> folders_;
    std::vector<std::string> moduleFolders_;
    FolderNames::Clock::duration timeLeft_ = searchTime;
};

} // namespace corvanta
