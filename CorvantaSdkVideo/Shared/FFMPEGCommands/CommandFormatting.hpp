#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// How values are written into command texts.
namespace corvanta {

/// A path between double quotes, its percent escapes decoded if it decodes as a whole. This is all the
/// escaping that command texts know: see `CommandPaths` for a path with a double quote in it, or one that
/// decoding changes.
std::string ffmpegFormatted(std::string_view path);

/// The value of the rotate metadata for an angle in degrees. The sense is inverted: 90 gives "270".
std::string ffmpegFormatted(std::int64_t angle);

/// Seconds with exactly four decimals, rounded half to even; "0" for a value that is no number.
std::string formattedTime(double seconds);

/// The shortest decimal text that reads back as the same number, with at least one digit after the point and
/// never with an exponent, which ffmpeg would refuse: "5.0".
std::string shortestDecimal(double value);
std::string shortestDecimal(float value);

} // namespace corvanta
