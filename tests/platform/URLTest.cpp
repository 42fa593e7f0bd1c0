#include "support/MediaFixtures.hpp"
#include "support/ScopedVariable.hpp"

#include <platform/URL.hpp>

#include <gtest/gtest.h>

namespace corvanta::test {
namespace {

TEST(URLTest, Parsing) {
    struct Case {
        const char *text, *absolute, *path, *scheme, *extension;
    };
    for (const Case& expected : {
             Case{"/a/b.mp4", "/a/b.mp4", "/a/b.mp4", "", "mp4"},
             {"/a b/ü.mov", "/a%20b/%C3%BC.mov", "/a b/ü.mov", "", "mov"},
             {"/a%20b.mp4", "/a%20b.mp4", "/a b.mp4", "", "mp4"},
             {"/50%zz%2", "/50%25zz%252", "/50%zz%2", "", ""},
             {"/a%25d.mp4", "/a%25d.mp4", "/a%d.mp4", "", "mp4"},
             {"/[a]{b}|\"'\\^`<>", "/%5Ba%5D%7Bb%7D%7C%22'%5C%5E%60%3C%3E", "/[a]{b}|\"'\\^`<>", "", ""},
             {"/\xff", "/%FF", "/\xff", "", ""},
             {"/a?b c#d e", "/a?b%20c#d%20e", "/a", "", ""},
             {"file:///a%20b.MP4", "file:///a%20b.MP4", "/a b.MP4", "file", "MP4"},
             {"FILE:///a", "FILE:///a", "/a", "FILE", ""},
             {"file://localhost/a", "file://localhost/a", "/a", "file", ""},
             {"file:a.mp4", "file:a.mp4", "a.mp4", "file", "mp4"},
             {"https://h:8080/v.mp4?q", "https://h:8080/v.mp4?q", "/v.mp4", "https", "mp4"},
             {"//host/a", "//host/a", "/a", "", ""},
             {"/a:b", "/a:b", "/a:b", "", ""},
             {"/dir/", "/dir/", "/dir", "", ""},
             {"/", "/", "/", "", ""},
             {"/.hidden", "/.hidden", "/.hidden", "", ""},
             {"/a.", "/a.", "/a.", "", ""},
             {"/x.tar.gz", "/x.tar.gz", "/x.tar.gz", "", "gz"},
             {" ", "%20", " ", "", ""},
         }) {
        SCOPED_TRACE(expected.text);
        const auto url = URL::parse(expected.text);
        ASSERT_TRUE(url);
        EXPECT_EQ(url->absoluteString(), expected.absolute);
        EXPECT_EQ(url->path(), expected.path);
        EXPECT_EQ(url->scheme(), expected.scheme);
        EXPECT_EQ(url->pathExtension(), expected.extension);
        EXPECT_EQ(url->isFileURL(),
                  expected.scheme == std::string_view("file") || expected.scheme == std::string_view("FILE"));
        EXPECT_EQ(URL::parse(url->absoluteString()), url);
    }
    for (const char* refused :
         {"", "1a:b", "a b:c", "ü:c", "http://[::1", "http://a b/c", ":a", "file://a%zz/b"}) {
        EXPECT_FALSE(URL::parse(refused)) << refused;
    }
    EXPECT_EQ(URL().path(), "");
    EXPECT_EQ(std::hash<URL>{}(*URL::parse("/a b")), std::hash<URL>{}(*URL::parse("/a%20b")));
}

// Whatever a file is called, its path comes back as it was.
TEST(URLTest, FilePathsRoundTrip) {
    std::string everyByte = "/";
    for (int byte = 1; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    for (const std::string& path :
         {everyByte, std::string("/"), std::string("/a b"), std::string("/100%"), std::string("/%20"),
          std::string("/a?b#c"), std::string("//a//b"), std::string("/-y"), std::string("/a:b"),
          std::string("/a\0b", 4), std::string("/file:"), std::string(5000, '/') + "x",
          "/" + std::string(200, 'n')}) {
        const URL url = URL::fromFilePath(path);
        EXPECT_EQ(url.path(), path);
        EXPECT_TRUE(url.isFileURL());
        EXPECT_EQ(URL::parse(url.absoluteString()), url) << url.absoluteString();
        const auto bare = URL::parse(parseablePath(path));
        ASSERT_TRUE(bare) << path;
        EXPECT_EQ(bare->path(), path);
        EXPECT_EQ(bare->scheme(), "");
        const URL appended = URL::fromFilePath("/base").appendingPathComponent(path.substr(1));
        EXPECT_EQ(appended.path(), path == "/" ? "/base" : "/base" + ("/" + path.substr(1)));
        EXPECT_EQ(appended.appendingPathExtension("%2.x").path(),
                  path == "/" ? "/base/.%2.x" : "/base/" + path.substr(1) + ".%2.x");
    }
    for (const char* relative : {"a", "a:b", "-y", "a%20b", "./a:b", "a/b:c", "?", "#", "100%"}) {
        const auto url = URL::parse(parseablePath(relative));
        ASSERT_TRUE(url) << relative;
        EXPECT_EQ(url->path(), relative);
        EXPECT_EQ(URL::fromFilePath(relative).path(), (std::filesystem::current_path() / relative).string());
    }
}

TEST(URLTest, RemovingPercentEncoding) {
    for (const auto& [text, decoded] : {std::pair("", ""),
                                        {"a b", "a b"},
                                        {"a%20b%25", "a b%"},
                                        {"%C3%bc", "ü"},
                                        {"ü", "ü"},
                                        {"%F0%9F%8E%AC", "🎬"}}) {
        EXPECT_EQ(removingPercentEncoding(text), decoded) << text;
    }
    for (const char* refused : {"%", "100% sure", "%2", "%g0", "%ff", "\xff", "%C3", "%ED%A0%80"}) {
        EXPECT_EQ(removingPercentEncoding(refused), std::nullopt) << refused;
    }
}

} // namespace
} // namespace corvanta::test
