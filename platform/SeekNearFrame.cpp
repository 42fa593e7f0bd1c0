#include <platform/SeekNearFrame.hpp>

#include <platform/Errors.hpp>
#include <platform/MediaOpening.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
}

namespace corvanta {

namespace {

// Behind the key frame that a seek finds some pictures may be incomplete, in open groups; they lie within
// this.
constexpr std::int64_t marginSeconds = 2;

bool takesOneFrame(const std::vector<std::string>& words) {
    return words.size() > 6 && words[0] == "-i" && words[2] == "-ss" && words[4] == "-vframes" &&
           words[5] == "1" && std::ranges::count(words, "-i") == 1;
}

// Where the digits of whole seconds end.
std::optional<std::int64_t> wholeSeconds(std::string_view text, std::size_t& end) {
    end = std::min(text.find('.'), text.size());
    const std::string_view fraction = text.substr(std::min(end + 1, text.size()));
    std::int64_t seconds = 0;
    const auto [last, error] = std::from_chars(text.data(), text.data() + end, seconds);
    const bool isPlain = end > 0 && error == std::errc() && last == text.data() + end &&
                         fraction.find_first_not_of("0123456789") == std::string_view::npos;
    return isPlain ? std::optional(seconds) : std::nullopt;
}

// Transport streams and AVI are sought inexactly, elementary streams not at all.
bool isSoughtExactly(const std::string& path, std::int64_t seconds) {
    try {
        OpenMedia media(path, {.patience = std::chrono::seconds(2)});
        const std::string_view container = media.format().iformat->name;
        return (container.starts_with("mov,") || container.starts_with("matroska,")) && media.seek(seconds);
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

std::vector<std::string> withSeekNearFrame(std::vector<std::string> arguments) {
    if (!takesOneFrame(arguments)) {
        return arguments;
    }
    std::size_t fraction = 0;
    std::string& position = arguments[3];
    const auto seconds = wholeSeconds(position, fraction);
    if (!seconds || *seconds <= 2 * marginSeconds ||
        !isSoughtExactly(arguments[1], *seconds - marginSeconds)) {
        return arguments;
    }
    // The rest of the way, with the digits of its fraction as they were.
    position = std::to_string(marginSeconds) + position.substr(fraction);
    arguments.insert(arguments.begin(), {"-ss", std::to_string(*seconds - marginSeconds)});
    return arguments;
}

} // namespace corvanta
