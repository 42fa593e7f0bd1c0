#include "MediaNames.hpp"

#include <algorithm>
#include <array>
#include <cctype>

namespace {

constexpr auto joined = std::to_array<std::string_view>(
    {"mp4", "mov", "m4v", "m4a", "mkv", "webm", "mka", "ts", "mts", "m2ts", "avi", "flv"});

constexpr auto others = std::to_array<std::string_view>(
    {"gif", "htm", "html", "jpeg", "jpg", "json", "pdf", "png", "txt", "webp", "xml", "zip"});

template <typename Names>
bool contains(const Names& names, std::string_view extension) {
    std::string lowered(extension);
    std::ranges::transform(lowered, lowered.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return std::ranges::find(names, lowered) != std::ranges::end(names);
}

} // namespace

const std::vector<std::string>& mediaExtensions() {
    static const std::vector<std::string> extensions{
        "3g2", "3gp",  "aac", "ac3", "aif",  "aiff", "amr",  "asf", "au",  "avi", "caf", "dv",
        "f4v", "flac", "flv", "m1v", "m2ts", "m2v",  "m4a",  "m4b", "m4v", "mka", "mkv", "mov",
        "mp2", "mp3",  "mp4", "mpe", "mpeg", "mpg",  "mts",  "mxf", "oga", "ogg", "ogv", "opus",
        "qt",  "snd",  "ts",  "vob", "wav",  "weba", "webm", "wma", "wmv"};
    return extensions;
}

bool isKnownExtension(std::string_view extension) {
    return contains(mediaExtensions(), extension) || contains(others, extension);
}

bool isJoinedExtension(std::string_view extension) {
    return std::ranges::find(joined, extension) != joined.end();
}
