#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>

#include <platform/URL.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace corvanta {

namespace {

template <typename Float>
std::string shortestFixed(Float value) {
    // The longest fixed form is that of the smallest denormal: a sign, "0." and 1074 digits at most.
    std::array<char, 1100> buffer;
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    return {buffer.data(), end};
}

template <typename Float>
std::string withFraction(Float value) {
    std::string text = shortestFixed(value);
    if (std::isfinite(value) && text.find('.') == std::string::npos) {
        text += ".0";
    }
    return text;
}

// Adds one unit in the last place of a run of digits with a point in it.
void increment(std::string& digits) {
    for (auto place = digits.rbegin(); place != digits.rend(); ++place) {
        if (*place == '.') {
            continue;
        }
        if (*place != '9') {
            ++*place;
            return;
        }
        *place = '0';
    }
    digits.insert(0, 1, '1');
}

} // namespace

std::string ffmpegFormatted(std::string_view path) {
    return '"' + removingPercentEncoding(path).value_or(std::string(path)) + '"';
}

std::string ffmpegFormatted(std::int64_t angle) {
    switch (angle) {
    case 90:
    case -270:
    case 450:
        return "270";
    case 180:
    case -180:
    case 540:
    case -540:
        return "180";
    case -90:
    case 270:
    case -450:
        return "90";
    default:
        return "0";
    }
}

// Works on the shortest decimal form, as number formatters do: 0.00005 lies exactly between two results
// there, though its binary value doesn't.
std::string formattedTime(double seconds) {
    if (!std::isfinite(seconds)) {
        return "0";
    }
    constexpr std::size_t decimals = 4;
    std::string text = withFraction(std::abs(seconds));
    const std::size_t kept = text.find('.') + 1 + decimals;
    if (text.size() <= kept) {
        text.append(kept - text.size(), '0');
    } else {
        const std::string rest = text.substr(kept);
        text.resize(kept);
        const std::string half = '5' + std::string(rest.size() - 1, '0');
        const bool odd = (text.back() - '0') % 2 != 0;
        if (rest > half || (rest == half && odd)) {
            increment(text);
        }
    }
    return (std::signbit(seconds) ? "-" : "") + text;
}

std::string shortestDecimal(double value) { return withFraction(value); }

std::string shortestDecimal(float value) { return withFraction(value); }

} // namespace corvanta
