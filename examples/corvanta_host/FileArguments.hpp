#pragma once

#include <CLI/App.hpp>

#include <memory>
#include <string>
#include <vector>

/// What becomes of a file that is where an output is to be.
enum class Overwriting { asked, always, never };

/// The options `--force` and `--no-clobber`.
class OverwritingOptions {
  public:
    explicit OverwritingOptions(CLI::App& command);

    Overwriting chosen() const;

  private:
    struct Flags {
        bool force = false;
        bool noClobber = false;
    };

    std::shared_ptr<Flags> flags_ = std::make_shared<Flags>();
};

/// What a command reads, and where it writes.
struct Files {
    std::vector<std::string> inputs;
    std::string output;
    Overwriting overwriting = Overwriting::asked;
};

/// Whether a path names a folder, by a slash at its end or by what is there.
bool isFolder(const std::string& path);

/// The words of a command line that name files: "FILE… -o OUT" for every command. Without `-o` one of the
/// words is OUT: the first one, or the last one where that has always been the place.
class FileArguments {
  public:
    enum class Out { first, last };

    /// Adds the words and options to `command`, which makes one output of all FILEs, or one of each.
    FileArguments(CLI::App& command, bool makesOneOfAll, Out place = Out::first);

    /// Throws UsageError for too few or too many words, and for an OUT that may be meant as a FILE: one
    /// without `-o` that names an existing file, as a shell's pattern gives it.
    Files files() const;

    /// The same file by file. Throws UsageError also for several ones without a folder as OUT, and for two
    /// that would get the same name in it.
    std::vector<Files> each() const;

  private:
    struct Words {
        std::vector<std::string> files;
        std::string output;
    };

    std::string command_;
    Out place_;
    OverwritingOptions overwriting_;
    std::shared_ptr<Words> words_ = std::make_shared<Words>();
};
