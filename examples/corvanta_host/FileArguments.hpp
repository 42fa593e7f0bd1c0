#pragma once

#include <CLI/App.hpp>

#include <memory>
#include <string>
#include <vector>

/// What a command reads, and where it writes.
struct Files {
    std::vector<std::string> inputs;
    std::string output;
    /// Write over what is there.
    bool force = false;
};

/// The words of a command line that name files: "FILE… -o OUT" for every command. Without `-o` one of the
/// words is OUT: the first one, or the last one where that has always been the place.
class FileArguments {
  public:
    enum class Out { first, last };

    /// Adds the words and options to `command`, for one FILE or for several.
    FileArguments(CLI::App& command, bool severalFiles, Out place = Out::first);

    /// Throws UsageError for too few or too many words, and for an OUT that may be meant as a FILE: one
    /// without
    /// `-o` that names an existing file, as a shell's pattern gives it.
    Files files() const;

  private:
    struct Words {
        std::vector<std::string> files;
        std::string output;
        bool force = false;
    };

    std::string command_;
    bool severalFiles_;
    Out place_;
    std::shared_ptr<Words> words_ = std::make_shared<Words>();
};
