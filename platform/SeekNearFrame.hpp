#pragma once

#include <string>
#include <vector>

namespace corvanta {

/// A command that takes one picture at a position, "-i FILE -ss SECONDS -vframes 1 ...", decodes all that
/// lies before it. Given the words of such a command, gives those that seek near the position first, if the
/// file's container makes that the very same picture (mov, mp4, Matroska, WebM); else the words as they are.
/// Reads the file's head.
std::vector<std::string> withSeekNearFrame(std::vector<std::string> arguments);

} // namespace corvanta
