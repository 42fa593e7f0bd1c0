#include "TrackSelection.hpp"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string_view>
#include <utility>

using namespace corvanta;

namespace {

/// Thrown for a text of another form.
struct OtherForm {};

std::int64_t number(std::string_view digits) {
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    std::int64_t value = 0;
    if (digits.empty() || !std::ranges::all_of(digits, isDigit) ||
        std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc()) {
        throw OtherForm{};
    }
    return value;
}

std::optional<std::int64_t> side(std::string_view digits) {
    return digits.empty() ? std::nullopt : std::optional(number(digits));
}

std::pair<std::string_view, std::string_view> splitAt(std::string_view text, char separator) {
    const std::size_t place = text.find(separator);
    if (place == std::string_view::npos) {
        throw OtherForm{};
    }
    return {text.substr(0, place), text.substr(place + 1)};
}

std::vector<CorvantaSdkVideoMergeMediaEntry> entriesFrom(std::string_view list) {
    std::vector<CorvantaSdkVideoMergeMediaEntry> entries;
    for (bool more = true; more;) {
        const std::size_t comma = list.find(',');
        more = comma != std::string_view::npos;
        const auto [file, stream] = splitAt(list.substr(0, comma), ':');
        entries.push_back({number(file), number(stream)});
        list.remove_prefix(more ? comma + 1 : list.size());
    }
    return entries;
}

struct Sized {
    std::string_view selected;
    std::optional<std::int64_t> width;
    std::optional<std::int64_t> height;
};

Sized withoutSize(std::string_view text) {
    if (text.find('@') == std::string_view::npos) {
        return {text, std::nullopt, std::nullopt};
    }
    const auto [selected, size] = splitAt(text, '@');
    const auto [width, height] = splitAt(size, 'x');
    return {selected, side(width), side(height)};
}

template <typename Read>
auto readOrRefuse(const std::string& text, Read read) {
    try {
        return read();
    } catch (const OtherForm&) {
        throw std::invalid_argument("\"" + text + "\" selects no stream");
    }
}

} // namespace

CorvantaSdkVideoMergeVideoTrack videoTrackFrom(const std::string& text) {
    return readOrRefuse(text, [&]() -> CorvantaSdkVideoMergeVideoTrack {
        const Sized sized = withoutSize(text);
        return {entriesFrom(sized.selected), sized.width, sized.height};
    });
}

CorvantaSdkVideoMergeAudioTrack audioTrackFrom(const std::string& text) {
    return readOrRefuse(text, [&]() -> CorvantaSdkVideoMergeAudioTrack { return {entriesFrom(text)}; });
}

CorvantaSdkVideoEncodeVideoEntry encodeEntryFrom(const std::string& text) {
    return readOrRefuse(text, [&]() -> CorvantaSdkVideoEncodeVideoEntry {
        const Sized sized = withoutSize(text);
        return {number(sized.selected), sized.width, sized.height};
    });
}
