#pragma once

#include <string>
#include <vector>

namespace corvanta {

/// A command for ffmpeg. Every path in it went through fixed texts without escaping: a double quote in a path
/// breaks them, so whoever runs a command checks its paths with `isWritableQuoted` first.
struct FFMPEGCommand {
    /// The command line, without the program's name.
    std::string script;
    /// Plain paths of temporary list files that the command reads; to be deleted when it has ended.
    std::vector<std::string> inputFilesListFilePaths;
};

} // namespace corvanta
