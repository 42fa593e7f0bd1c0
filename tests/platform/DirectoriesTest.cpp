#include "support/Processes.hpp"

#include <platform/Bundle.hpp>
#include <platform/Directories.hpp>
#include <platform/FileManager.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;

TEST(DirectoriesTest, FollowTheEnvironmentAndAreMadePrivate) {
    const TemporaryDirectory home;
    const std::string root = home.path();
    const ScopedVariable homeVariable("HOME", root);
    struct Case {
        std::optional<std::string> data, cache;
        std::string dataPath, cachePath;
    };
    for (const Case& expected : {
             Case{root + "/data base", root + "/c%20", root + "/data base", root + "/c%20"},
             {std::nullopt, std::nullopt, root + "/.local/share", root + "/.cache"},
             {"", "relative", root + "/.local/share", root + "/.cache"},
         }) {
        const ScopedVariable data("XDG_DATA_HOME", expected.data);
        const ScopedVariable cache("XDG_CACHE_HOME", expected.cache);
        const std::string store = expected.dataPath + "/corvanta-sdk-video";
        EXPECT_EQ(Directories::documents().path(), store + "/documents");
        EXPECT_EQ(Directories::store().path(), store);
        EXPECT_EQ(Directories::caches().path(), expected.cachePath + "/corvanta-sdk-video");
        for (const std::string& made : {store, store + "/documents", expected.cachePath, expected.dataPath}) {
            EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all) << made;
        }
    }
    EXPECT_FALSE(fs::exists("relative"));

    writeFile(root + "/file", "");
    const ScopedVariable blocked("XDG_DATA_HOME", root + "/file");
    EXPECT_EQ(Directories::store().path(), root + "/file/corvanta-sdk-video");
}

TEST(DirectoriesTest, Resources) {
    const TemporaryDirectory directory;
    writeFile(directory.file("a.b"), "");
    const std::string relative = fs::relative(directory.path());
    for (const std::string& chosen : {directory.path().string(), relative, std::string()}) {
        const ScopedVariable variable("CORVANTA_RESOURCES", chosen);
        EXPECT_EQ(Bundle::pathForResource("a", "b").has_value(), !chosen.empty());
        EXPECT_EQ(Bundle::pathForResource("version", "properties").has_value(), chosen.empty());
    }
}

TEST(FileManagerTest, OddPaths) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("a");
    const std::string pipe = directory.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_TRUE(FileManager::createFile(file, "long contents"));
    EXPECT_TRUE(FileManager::createFile(file, "x"));
    EXPECT_EQ(readFile(file), "x");
    fs::create_symlink("nowhere", directory.path() / "dangling");
    for (const std::string& missing :
         {std::string(), directory.file("b"), file + '/', file + "/b", file + std::string("\0b", 2),
          directory.file(std::string(300, 'n')), directory.file("dangling")}) {
        EXPECT_FALSE(FileManager::fileExists(missing)) << missing;
        EXPECT_FALSE(FileManager::isEndless(missing));
    }
    EXPECT_FALSE(FileManager::createFile(directory.path()));
    EXPECT_FALSE(FileManager::createFile(directory.file("no/such/directory")));
    EXPECT_FALSE(FileManager::createFile(file + std::string("\0b", 2)));
    EXPECT_FALSE(FileManager::createFile("/dev/full", std::string(100000, 'x')));
    EXPECT_TRUE(FileManager::isEndless(pipe));
    EXPECT_TRUE(FileManager::isEndless("/dev/zero"));
    EXPECT_FALSE(FileManager::isEndless(file));
    FileManager::removeItem(file);
    EXPECT_FALSE(fs::exists(file));
    for (const std::string& refused :
         {file, std::string(), directory.path().string(), directory.path().string() + std::string("\0", 1)}) {
        EXPECT_THROW(FileManager::removeItem(refused), std::system_error) << refused;
    }
}

} // namespace
} // namespace corvanta::test
