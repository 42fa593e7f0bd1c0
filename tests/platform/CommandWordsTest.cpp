#include <platform/CommandWords.hpp>

#include <gtest/gtest.h>

namespace corvanta {
namespace {

using Words = std::vector<std::string>;

TEST(CommandWordsTest, Splitting) {
    for (const auto& [command, words] : std::vector<std::pair<std::string_view, Words>>{
             {"", {}},
             {"   ", {}},
             {" -i  a   b ", {"-i", "a", "b"}},
             {R"(-i "a b" -c copy)", {"-i", "a b", "-c", "copy"}},
             {R"("" a "")", {"", "a", ""}},
             {R"(-af "volume=1.0")", {"-af", "volume=1.0"}},
             {R"(pre"a b"post)", {"prea bpost"}},
             {R"("open a)", {"open a"}},
             {R"([0:v]scale='min(1,2)':h=\,x)", {R"([0:v]scale='min(1,2)':h=\,x)"}},
             {"a\tb\nc $x `y` * ~ \\ 'q r'", {"a\tb\nc", "$x", "`y`", "*", "~", "\\", "'q", "r'"}},
             {"file:///a%20b.mp4", {"/a b.mp4"}},
             {"file:///a%2520%22%0A.mp4", {"/a%20\"\n.mp4"}},
             {"file:///a%FF", {"/a\xff"}},
             {R"("file:///a%20b.mp4" "/a%20b")", {"file:///a%20b.mp4", "/a%20b"}},
             {"/a%20b https://h/a%20b xfile:///a%20b", {"/a%20b", "https://h/a%20b", "xfile:///a%20b"}},
             {"file:", {""}},
         }) {
        EXPECT_EQ(splitCommand(command), words) << command;
    }
}

} // namespace
} // namespace corvanta
