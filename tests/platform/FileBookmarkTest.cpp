#include <platform/Directories.hpp>
#include <platform/FileBookmark.hpp>

#include <gmock/gmock.h>

#include <support/UserFolders.hpp>

#include <functional>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Optional;

std::optional<std::string> resolve(const std::optional<std::string>& bookmark) {
    return FileBookmarkResolver{}.resolve(bookmark.value());
}

TEST(FileBookmarkTest, FollowsTheFileAndNothingElse) {
    struct Case {
        const char* what;
        std::function<void(const UserFolders&, const std::string& path)> event;
        // From the folder, or absolute; empty for nothing.
        std::function<std::string(const UserFolders&)> expected;
    };
    const auto at = [](std::string name) {
        return [name](const UserFolders& folders) { return folders.file(name); };
    };
    const auto nowhere = [](const UserFolders&) { return std::string(); };
    const auto module = [](URL (*directory)()) {
        return [directory](const UserFolders&) { return directory().path() + "/moved.mp4"; };
    };
    const auto moveInto = [](URL (*directory)()) {
        return [directory](const UserFolders&, const std::string& path) {
            fs::rename(path, directory().path() + "/moved.mp4");
        };
    };
    const Case cases[] = {
        {"untouched", [](auto&, auto&) {}, at("a.mp4")},
        {"rewritten in place", [](auto& folders, auto&) { folders.make("a.mp4", "longer content"); },
         at("a.mp4")},
        {"renamed", [](auto& folders, auto& path) { fs::rename(path, folders.file("b %?#ü\n.mp4")); },
         at("b %?#ü\n.mp4")},
        {"moved to the documents", moveInto(Directories::documents), module(Directories::documents)},
        {"moved to the caches", moveInto(Directories::caches), module(Directories::caches)},
        {"moved to the store's directory", moveInto(Directories::store), module(Directories::store)},
        {"moved where nobody looks",
         [](auto& folders, auto& path) {
             fs::create_directory(folders.file("deeper"));
             fs::rename(path, folders.file("deeper/a.mp4"));
         },
         nowhere},
        {"deleted", [](auto&, auto& path) { fs::remove(path); }, nowhere},
        {"its folder deleted", [](auto& folders, auto&) { fs::remove_all(folders.folder()); }, nowhere},
        {"replaced by a new file",
         [](auto& folders, auto& path) {
             fs::remove(path);
             folders.make("a.mp4");
         },
         nowhere},
        {"replaced by a rename over it",
         [](auto& folders, auto& path) { fs::rename(folders.make("new.mp4"), path); }, nowhere},
        {"renamed, its name taken",
         [](auto& folders, auto& path) {
             fs::rename(path, folders.file("b.mp4"));
             folders.make("a.mp4");
         },
         at("b.mp4")},
        {"another hard link kept",
         [](auto& folders, auto& path) {
             fs::create_hard_link(path, folders.file("b.mp4"));
             fs::remove(path);
         },
         at("b.mp4")},
        {"a link put in its place",
         [](auto& folders, auto& path) {
             fs::rename(path, folders.file("b.mp4"));
             fs::create_symlink(folders.file("b.mp4"), path);
         },
         at("a.mp4")},
        {"a folder put in its place",
         [](auto&, auto& path) {
             fs::remove(path);
             fs::create_directory(path);
         },
         nowhere},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(example.what);
        const UserFolders folders;
        const std::string path = folders.make("a.mp4");
        const auto bookmark = makeFileBookmark(path);
        ASSERT_TRUE(bookmark);
        example.event(folders, path);
        const std::string expected = example.expected(folders);
        EXPECT_EQ(resolve(bookmark), expected.empty() ? std::nullopt : std::optional(expected));
    }
}

TEST(FileBookmarkTest, IsNotTakenInByReusedInodes) {
    const UserFolders folders;
    for (int round = 0; round < 1000; ++round) {
        const std::string name = std::to_string(round);
        const std::string path = folders.make("old" + name);
        const auto bookmark = makeFileBookmark(path);
        fs::remove(path);
        // Alternately under the old name and under another.
        const std::string successor = folders.make(round % 2 == 0 ? "old" + name : "new" + name);
        ASSERT_EQ(resolve(bookmark), std::nullopt) << "round " << round;
        fs::remove(successor);
    }
}

TEST(FileBookmarkTest, OneResolverServesManyBookmarksOfOneFolder) {
    const UserFolders folders;
    std::vector<std::optional<std::string>> bookmarks;
    for (int number = 0; number < 100; ++number) {
        const std::string path = folders.make(std::to_string(number));
        bookmarks.push_back(makeFileBookmark(path));
        fs::rename(path, path + ".moved");
    }
    FileBookmarkResolver resolver;
    for (int number = 0; number < 100; ++number) {
        EXPECT_THAT(resolver.resolve(*bookmarks[static_cast<std::size_t>(number)]),
                    Optional(folders.file(std::to_string(number) + ".moved")));
    }
    // What the resolver remembers of a folder may be out of date; it must be checked.
    fs::rename(folders.file("7.moved"), folders.file("7.again"));
    fs::copy_file(folders.file("8.moved"), folders.file("7.moved"));
    EXPECT_EQ(resolver.resolve(*bookmarks[7]), std::nullopt);
}

TEST(FileBookmarkTest, TakesAnyPathAndRefusesBytesOfOthers) {
    const UserFolders folders;
    const std::string path = folders.make("a.mp4");
    for (const std::string& bad :
         {std::string(), folders.file("absent"), path + '\0', path + '\0' + "b", path + "/below"}) {
        EXPECT_EQ(makeFileBookmark(bad), std::nullopt) << bad;
    }
    const fs::path before = fs::current_path();
    fs::current_path(folders.folder());
    const auto relative = makeFileBookmark("a.mp4");
    fs::current_path(before);
    EXPECT_THAT(resolve(relative), Optional(path));

    const std::string bytes = makeFileBookmark(path).value();
    for (std::size_t length = 0; length + path.size() <= bytes.size(); ++length) {
        EXPECT_EQ(resolve(bytes.substr(0, length)), std::nullopt) << length;
    }
    for (std::size_t position = 0; position + path.size() < bytes.size(); ++position) {
        std::string changed = bytes;
        changed[position] = static_cast<char>(changed[position] ^ 0x55);
        EXPECT_EQ(resolve(changed), std::nullopt) << position;
    }
    EXPECT_EQ(resolve(bytes + '\0'), std::nullopt);
}

} // namespace
} // namespace corvanta::test
