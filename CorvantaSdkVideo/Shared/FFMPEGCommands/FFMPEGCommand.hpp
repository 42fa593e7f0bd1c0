#pragma once

#include <string>
#include <vector>

namespace corvanta {

/// A command for ffmpeg. Every path in it went through fixed texts without escaping: whoever runs a command
/// has its paths from `CommandPaths`.
struct FFMPEGCommand {
    /// The command line, without the program's name.
    std::string script;
    /// Plain paths of temporary list files that the command reads; to be deleted when it has ended.
    std::vector<std::string> inputFilesListFilePaths;
};

} // namespace corvanta
