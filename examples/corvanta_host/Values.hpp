#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The sides of a picture, in pixels, that an encoder here takes, and those of a track within one.
inline constexpr double leastSide = 128;
inline constexpr double mostSide = 8190;
inline constexpr std::int64_t leastTrackSide = 2;
inline constexpr std::int64_t mostTrackSide = 8190;

/// Texts of the command line that are numbers. All throw UsageError with the option's name and what it takes.

/// A time in seconds: "0:01.5", "1:02:03", "1.5s", "1500ms", or a number alone, of `unitSeconds` each.
double secondsFrom(const std::string& option, const std::string& text, double unitSeconds);

/// A side of a picture to be made: even, from `leastSide` to `mostSide`.
void requireSide(const std::string& option, std::optional<double> side);

/// A side within a picture of several, or of a thumbnail, from `least` up.
void requireSideWithin(const std::string& option, std::optional<std::int64_t> side, std::int64_t least,
                       std::int64_t most);
