#pragma once

#include <platform/AffineTransform.hpp>

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

/// Answers ffprobe's plainest question by libavformat, without a process of its own.
namespace corvanta {

/// The file that a command asks about if it is the one that can be answered here, word for word:
/// "-i FILE -v quiet -print_format json -show_format -show_streams -hide_banner". Nothing for any other
/// command, and for a FILE that is neither an absolute path nor the text of a file URL.
std::optional<std::string> fileOfPlainProbe(const std::vector<std::string>& words);

/// What ffprobe would write for that command and file, but for some details of side data. Nothing if ffprobe
/// would fail, if the file can't be read within bounds, or once `stop` is requested: ffprobe itself is to be
/// asked then. A file that is the same as when it was asked about before isn't read again, and what another
/// thread is reading is waited for. Blocks; safe from any thread.
std::optional<std::string> probeInProcess(const std::string& file, const std::stop_token& stop);

/// The same for later, of a file whose answer can be remembered.
void rememberProbe(const std::string& file, const std::stop_token& stop);
bool isProbeRemembered(const std::string& file);

/// The display transform of the first video track of the file at `path`, if a probe has seen it and the file
/// is the same since; else nothing. Safe from any thread.
std::optional<AffineTransform> probedDisplayTransform(const std::string& path);

} // namespace corvanta
