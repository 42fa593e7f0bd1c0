#include <platform/Directories.hpp>
#include <platform/FileBookmark.hpp>

#include <gmock/gmock.h>

#include <support/UserFolders.hpp>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Optional;

std::optional<std::string> resolve(const std::optional<std::string>& bookmark) {
    return FileBookmarkResolver{}.resolve(bookmark.value());
}

TEST(FileBookmarkTest, FollowsTheFileAndNothingElse) {
    // What is done in the file's folder, and the file's name there afterwards; empty for nothing.
    for (const auto& [done, name] :
         std::vector<std::pair<std::string, std::string>>{{"true", "a.mp4"},
                                                          {"echo longer content >a.mp4", "a.mp4"},
                                                          {"mv a.mp4 'b %?#ü\n.mp4'", "b %?#ü\n.mp4"},
                                                          {"mkdir deeper; mv a.mp4 deeper", ""},
                                                          {"rm a.mp4", ""},
                                                          {"rm -r \"$PWD\"", ""},
                                                          {"rm a.mp4; echo content >a.mp4", ""},
                                                          {"echo content >new.mp4; mv new.mp4 a.mp4", ""},
                                                          {"mv a.mp4 b.mp4; echo content >a.mp4", "b.mp4"},
                                                          {"ln a.mp4 b.mp4; rm a.mp4", "b.mp4"},
                                                          {"mv a.mp4 b.mp4; ln -s b.mp4 a.mp4", "a.mp4"},
                                                          {"rm a.mp4; mkdir a.mp4", ""}}) {
        SCOPED_TRACE(done);
        const UserFolders folders;
        const auto bookmark = makeFileBookmark(folders.make("a.mp4"));
        ASSERT_EQ(std::system(("cd " + folders.folder().string() + " && " + done).c_str()), 0);
        EXPECT_EQ(resolve(bookmark), name.empty() ? std::nullopt : std::optional(folders.file(name)));
    }
    for (URL (*const directory)() : {Directories::documents, Directories::caches, Directories::store}) {
        const UserFolders folders;
        const std::string path = folders.make("a.mp4");
        const auto bookmark = makeFileBookmark(path);
        const std::string moved = directory().path() + "/moved.mp4";
        fs::rename(path, moved);
        EXPECT_THAT(resolve(bookmark), Optional(moved));
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

TEST(FileBookmarkTest, AResolverSeesWhatChangesBetweenItsPasses) {
    const UserFolders folders;
    const auto bookmark = makeFileBookmark(folders.make("0"));
    FileBookmarkResolver resolver;
    // The folder is remembered from the moment on when it has been left alone for a while, which some rounds
    // come to.
    for (int round = 0; round < 60; ++round) {
        const auto end =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(round % 15 == 0 ? 50 : 0);
        do {
            resolver.beginPass();
            ASSERT_THAT(resolver.resolve(bookmark.value()), Optional(folders.file(std::to_string(round))));
        } while (std::chrono::steady_clock::now() < end);
        fs::rename(folders.file(std::to_string(round)), folders.file(std::to_string(round + 1)));
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
