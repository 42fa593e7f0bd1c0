#include "examples/corvanta_host/HostRun.hpp"

#include <gmock/gmock.h>

#include <sstream>

namespace corvanta::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class CompletionTest : public testing::Test {
  protected:
    CompletionTest() {
        std::filesystem::copy_file(makeClip({.seconds = 0.5}), directory_.file("a b.mp4"));
        std::filesystem::copy_file(makeClip({.seconds = 0.5, .pictures = {{.width = 320}}}),
                                   directory_.file("c.mp4"));
        writeFile(directory_.file("notes.txt"), "");
        options_ = {.environment = {{"XDG_DATA_HOME", directory_.file("data")}},
                    .workingDirectory = directory_.path()};
        const FakeProgram broken("CORVANTA_FFMPEG", "exit 1\n");
        id_ = runHost({"concat", "a b.mp4", "a b.mp4", "-o", "joined"}, options_).id();
        runHost({"thumbnail", "c.mp4", "-o", "t"}, options_);
    }

    Lines completed(std::vector<std::string> words) const {
        words.insert(words.begin(), "__complete");
        const HostRun ended = runHost(words, options_);
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.errors, "");
        return linesOf(ended.output);
    }

    /// What a shell is left with of its own completions of `line`, by its own means.
    Lines inShell(const std::string& shell, const std::string& script, const std::string& line) const {
        const std::string folder = CORVANTA_COMPLETIONS;
        const std::string program = std::string(CORVANTA_HOST);
        const std::string path = program.substr(0, program.rfind('/')) + ":" + std::getenv("PATH");
        Program::Options options = options_;
        options.environment.insert(
            {{"PATH", path}, {"FOLDER", folder}, {"LINE", line}, {"HOME", directory_.path()}});
        Program program_(shell, {"-c", script}, options);
        EXPECT_EQ(program_.wait(), 0) << program_.errors();
        return linesOf(program_.output());
    }

    const TemporaryDirectory directory_;
    Program::Options options_;
    std::string id_;
};

TEST_F(CompletionTest, TheProgramKnowsWhatCanCome) {
    EXPECT_THAT(completed({""}),
                AllOf(Contains(StartsWith("merge\tJoin unlike")), Contains(StartsWith("doctor\t")),
                      Not(Contains(HasSubstr("__complete")))));
    EXPECT_THAT(completed({"con"}),
                testing::ElementsAre(StartsWith("contact-sheet\t"), StartsWith("concat\t")));
    EXPECT_THAT(completed({"help", "tr"}), testing::ElementsAre(StartsWith("tracks\t")));
    EXPECT_THAT(completed({"tracks", "add-"}),
                testing::ElementsAre(StartsWith("add-video\t"), StartsWith("add-audio\t")));
    EXPECT_THAT(completed({"--json", "merge", "--wi"}),
                testing::ElementsAre("--width\tWidth of the picture in "
                                     "pixels, even, from 128 on"));
    const Lines options = completed({"encode", "--force", "--encoder", "x", "--"});
    EXPECT_THAT(options, AllOf(Contains(StartsWith("--json\t")), Contains(StartsWith("--encoder\t")),
                               Not(Contains(StartsWith("--force\t")))));
    for (const Lines& words : {Lines{"merge", "--codec", "h"}, {"merge", "--codec", "=", "h"}}) {
        EXPECT_THAT(completed(words), testing::ElementsAre("h264\t", "hevc\t"));
    }
    EXPECT_THAT(completed({"requests", "--status", "c"}), testing::ElementsAre("cancelled\t", "complete\t"));
    EXPECT_THAT(completed({"encode", "--encoder", "libx26"}), Contains(StartsWith("libx264\t")));
    EXPECT_THAT(completed({"edit", ""}),
                testing::ElementsAre(AllOf(StartsWith(":files "), HasSubstr(" mp4 "))));
    EXPECT_THAT(completed({"edit", "a.mp4", "-o", "x"}), testing::ElementsAre(":files"));
    EXPECT_THAT(completed({"edit", "--", "--st"}), testing::ElementsAre(StartsWith(":files ")));
    for (const Lines& words :
         {Lines{"process", ""}, {"requests", "--delete", id_.substr(0, 4)}, {"watch", ""}}) {
        EXPECT_THAT(completed(words),
                    testing::ElementsAre(id_ + "\tconcat error " + directory_.file("joined.mp4")));
    }
    EXPECT_THAT(completed({"merge", "a b.mp4", "c.mp4", "-o", "m", "--video-track", "0:0,"}),
                testing::ElementsAre("0:0,0:0\th264 160x120 of a b.mp4", "0:0,1:0\th264 320x120 of c.mp4"));
    EXPECT_THAT(completed({"encode", "c.mp4", "--audio", ""}),
                testing::ElementsAre("1\taac stereo of c.mp4"));
    for (const Lines& words : {Lines{"merge", "/none.mp4", "notes.txt", "--audio-track", ""},
                               {"merge", "--width", ""},
                               {"no", "such"},
                               {"edit", "--start=1", "--x"}}) {
        EXPECT_THAT(completed(words), testing::Each(StartsWith(":files"))) << testing::PrintToString(words);
    }
}

TEST_F(CompletionTest, ShellsAskIt) {
    const std::string bash = R"(
        source /usr/share/bash-completion/bash_completion 2>/dev/null; source "$FOLDER/corvanta_host.bash"
        COMP_LINE=$LINE COMP_POINT=${#LINE}; read -ra COMP_WORDS <<<"${LINE//:/ : }"
        [[ $LINE != *' ' ]] || COMP_WORDS+=("")
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _corvanta_host; printf '%s\n' "${COMPREPLY[@]}")";
    // The functions of its completion system, which needs a terminal, say what they are asked.
    const std::string zsh = R"(
        _describe() { print -rl -- ${(P)2} }; _files() { print -- files $@ }
        words=(${(z)LINE}); [[ $LINE != *' ' ]] || words+=(''); CURRENT=$#words; . "$FOLDER/_corvanta_host")";
    const std::string fish = R"(source $FOLDER/corvanta_host.fish; complete -C "$LINE")";
    const auto first = [](const std::string& word) { return Contains(StartsWith(word)); };
    for (const auto& [shell, script] : {std::pair("bash", bash), {"zsh", zsh}, {"fish", fish}}) {
        if (std::system((std::string("command -v ") + shell + " >/dev/null").c_str()) != 0) {
            continue;
        }
        SCOPED_TRACE(shell);
        EXPECT_THAT(inShell(shell, script, "corvanta_host mer"), AllOf(first("merge"), Not(first("info"))));
        EXPECT_THAT(inShell(shell, script, "corvanta_host edit --ran"), first("--range"));
        EXPECT_THAT(inShell(shell, script, "corvanta_host process "), first(id_));
        const Lines files = inShell(shell, script, "corvanta_host info ");
        if (shell == std::string("zsh")) {
            EXPECT_THAT(files, Contains(AllOf(StartsWith("files -g *.(#i)("), HasSubstr("|mp4|"))));
        } else {
            EXPECT_THAT(files, AllOf(first("a"), first("c.mp4"), Not(first("notes"))));
            EXPECT_THAT(inShell(shell, script, "corvanta_host edit c.mp4 -o n"), first("notes.txt"));
        }
        EXPECT_THAT(inShell(shell, script, "corvanta_host merge c.mp4 c.mp4 --video-track 0:"),
                    first(shell == std::string("bash")  ? "0"
                          : shell == std::string("zsh") ? "0\\:0"
                                                        : "0:0"));
    }
}

} // namespace
} // namespace corvanta::test
