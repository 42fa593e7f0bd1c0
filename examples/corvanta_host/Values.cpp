#include "Values.hpp"

#include "Failures.hpp"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <string_view>
#include <vector>

namespace {

constexpr double minute = 60;

std::optional<double> numberFrom(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

// "hours:minutes:seconds" or "minutes:seconds"
std::optional<double> clockFrom(std::string_view text) {
    double total = 0;
    int fields = 0;
    for (bool last = false; !last; ++fields) {
        const std::size_t colon = text.find(':');
        last = colon == std::string_view::npos;
        const auto field = numberFrom(text.substr(0, colon));
        if (!field || *field < 0 || (fields > 0 && *field >= minute) ||
            (!last && *field != std::floor(*field))) {
            return std::nullopt;
        }
        total = total * minute + *field;
        text.remove_prefix(last ? text.size() : colon + 1);
    }
    return fields <= 3 ? std::optional(total) : std::nullopt;
}

} // namespace

double secondsFrom(const std::string& option, const std::string& text, double unitSeconds) {
    const std::string_view whole = text;
    std::optional<double> seconds;
    if (whole.find(':') != std::string_view::npos) {
        seconds = clockFrom(whole);
    } else if (whole.ends_with("ms")) {
        seconds = numberFrom(whole.substr(0, whole.size() - 2));
        seconds = seconds ? std::optional(*seconds / 1000) : seconds;
    } else if (whole.ends_with('s')) {
        seconds = numberFrom(whole.substr(0, whole.size() - 1));
    } else {
        seconds = numberFrom(whole);
        seconds = seconds ? std::optional(*seconds * unitSeconds) : seconds;
    }
    if (!seconds) {
        throw UsageError(option + " takes a time such as 1.5s, 1500ms or 0:01.5, not \"" + text + '"');
    }
    return *seconds;
}

void requireSide(const std::string& option, std::optional<double> side) {
    if (!side) {
        return;
    }
    if (!(*side >= leastSide && *side <= mostSide)) {
        throw UsageError(fmt::format("{} takes {} to {} pixels, not {}", option, leastSide, mostSide, *side));
    }
    if (std::fmod(*side, 2) != 0) {
        throw UsageError(fmt::format("{} takes an even number of pixels, not {}", option, *side));
    }
}

void requireSideWithin(const std::string& option, std::optional<std::int64_t> side, std::int64_t least,
                       std::int64_t most) {
    if (side && (*side < least || *side > most)) {
        throw UsageError(fmt::format("{} takes {} to {} pixels, not {}", option, least, most, *side));
    }
}
