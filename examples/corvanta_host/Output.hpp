#pragma once

#include "Console.hpp"
#include "FileArguments.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

/// The file that a command writes.
struct Output {
    /// For the module: without the extension.
    corvanta::CorvantaSdkVideoFileDescriptor location;
    std::string path;
};

/// Where `files` is to be written as a file of that extension. An OUT that ends with the extension is meant
/// so, and one that is a folder, or ends with a slash, gets the first input's name in it. Throws UsageError
/// for an extension that is not written, Refusal for a folder that isn't there, an output that is an input,
/// and for a file that is there already, unless `--force` or an answer on the terminal allows to write over
/// it.
Output outputFor(const Files& files, const std::string& extension);

/// The same for a path with its extension, whatever that is.
std::string outputPath(const Files& files);

/// Throws Refusal if something is at `path` that may not be written over, or another run of this program is
/// about to write there. Until this one ends the others are refused.
void requireFree(const std::string& path, Overwriting overwriting);

/// Removes what a run has begun to write at a path, unless it is told that the run is done. A file that was
/// there before and has not been touched stays.
class UnfinishedOutput {
  public:
    explicit UnfinishedOutput(const std::string& path) : path_(path), before_(stateOf(path)) {}
    UnfinishedOutput(const UnfinishedOutput&) = delete;
    UnfinishedOutput& operator=(const UnfinishedOutput&) = delete;
    ~UnfinishedOutput();

    void keep() { path_.clear(); }

  private:
    /// Device, inode and time of the last change; nothing for no file.
    using State = std::optional<std::array<std::int64_t, 4>>;

    static State stateOf(const std::string& path);

    std::string path_;
    State before_;
};
