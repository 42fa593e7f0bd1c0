#include "TrackSelection.hpp"

#include <charconv>
#include <regex>
#include <stdexcept>

using namespace corvanta;

namespace {

std::invalid_argument noStream(const std::string& text) {
    return std::invalid_argument("\"" + text + "\" selects no stream");
}

std::smatch matched(const std::string& text, const char* pattern) {
    std::smatch match;
    if (!std::regex_match(text, match, std::regex(pattern))) {
        throw noStream(text);
    }
    return match;
}

std::int64_t number(const std::ssub_match& digits) {
    std::int64_t value = 0;
    const std::string text = digits;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) {
        throw noStream(text);
    }
    return value;
}

std::optional<std::int64_t> side(const std::ssub_match& digits) {
    return digits.length() == 0 ? std::nullopt : std::optional(number(digits));
}

std::vector<CorvantaSdkVideoMergeMediaEntry> entriesFrom(const std::string& list) {
    static const std::regex entry("([0-9]+):([0-9]+)");
    std::vector<CorvantaSdkVideoMergeMediaEntry> entries;
    for (std::sregex_iterator found(list.begin(), list.end(), entry), end; found != end; ++found) {
        entries.push_back({number((*found)[1]), number((*found)[2])});
    }
    return entries;
}

} // namespace

CorvantaSdkVideoMergeVideoTrack videoTrackFrom(const std::string& text) {
    const std::smatch match = matched(text, "([0-9]+:[0-9]+(?:,[0-9]+:[0-9]+)*)(?:@([0-9]*)x([0-9]*))?");
    return {entriesFrom(match[1]), side(match[2]), side(match[3])};
}

CorvantaSdkVideoMergeAudioTrack audioTrackFrom(const std::string& text) {
    const std::smatch match = matched(text, "([0-9]+:[0-9]+(?:,[0-9]+:[0-9]+)*)");
    return {entriesFrom(match[1])};
}

CorvantaSdkVideoEncodeVideoEntry encodeEntryFrom(const std::string& text) {
    const std::smatch match = matched(text, "([0-9]+)(?:@([0-9]*)x([0-9]*))?");
    return {number(match[1]), side(match[2]), side(match[3])};
}
