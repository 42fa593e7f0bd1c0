#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
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

/// Finds bookmarked files again. It remembers the folders that it has searched, so it is meant to live for
/// one pass over some bookmarks. For one thread at a time.
class FileBookmarkResolver {
  public:
    /// The file's present path: the bookmarked one, or a place in the same folder or in one of the module's
    /// directories. Nothing if the file is not found there, or if the bytes are no bookmark. What is found is
    /// always the bookmarked file itself, never another that has taken its place, name or inode number.
    std::optional<std::string> resolve(std::string_view bookmark);

  private:
    using NamesByInode = std::unordered_multimap<std::uint64_t, std::string>;

    const NamesByInode& namesIn(const std::string& folder);

    std::map<std::string, NamesByInode> folders_;
    std::vector<std::string> moduleFolders_;
};

} // namespace corvanta
