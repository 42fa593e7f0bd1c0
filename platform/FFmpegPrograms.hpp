#pragma once

#include <string>

namespace corvanta {

/// The programs that are run: a name to be looked for in PATH, or what the host's environment says, read at
/// each call.
std::string ffmpegProgram();
std::string ffprobeProgram();

/// Whether the host's environment names an ffprobe.
bool isFFprobeChosen();

} // namespace corvanta
