#pragma once

namespace corvanta {

/// Qt's player crashes where GStreamer's elements are missing. Throws PlayerUnavailable, naming the packages
/// that hold them, if one of those that it always takes isn't installed.
void requireGStreamerElements();

} // namespace corvanta
