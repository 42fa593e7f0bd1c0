#pragma once

#include <functional>
#include <string>

namespace corvanta {

/// Takes one line, without its end. Called from any thread, by one at a time; must not throw.
using ConsoleSink = std::function<void(const std::string& line)>;

/// Where the lines go that the module prints of its own accord: each line of ffmpeg's log, what the
/// noise library loads and warns of, and a request's row that could not be updated. At first that is standard
/// output. An empty sink turns them off; what ffmpeg says still reaches the log callback. Safe from any
/// thread.
void setConsoleSink(ConsoleSink sink);

/// Standard output, flushed after each line.
ConsoleSink standardOutputSink();

/// Hands a line to the sink.
void printToConsole(const std::string& line);

} // namespace corvanta
