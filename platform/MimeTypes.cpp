#include <platform/MimeTypes.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <utility>

namespace corvanta {

namespace {

// Sorted by extension; the types are those of the IANA registry or of common practice.
constexpr auto types = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"3g2", "video/3gpp2"},       {"3gp", "video/3gpp"},       {"aac", "audio/aac"},
    {"ac3", "audio/ac3"},         {"aif", "audio/aiff"},       {"aiff", "audio/aiff"},
    {"amr", "audio/amr"},         {"asf", "video/x-ms-asf"},   {"au", "audio/basic"},
    {"avi", "video/x-msvideo"},   {"caf", "audio/x-caf"},      {"dv", "video/x-dv"},
    {"eac3", "audio/eac3"},       {"f4v", "video/mp4"},        {"flac", "audio/flac"},
    {"flv", "video/x-flv"},       {"gif", "image/gif"},        {"htm", "text/html"},
    {"html", "text/html"},        {"jpeg", "image/jpeg"},      {"jpg", "image/jpeg"},
    {"json", "application/json"}, {"m1v", "video/mpeg"},       {"m2ts", "video/mp2t"},
    {"m2v", "video/mpeg"},        {"m4a", "audio/mp4"},        {"m4b", "audio/mp4"},
    {"m4v", "video/x-m4v"},       {"mka", "audio/x-matroska"}, {"mkv", "video/x-matroska"},
    {"mov", "video/quicktime"},   {"mp2", "audio/mpeg"},       {"mp3", "audio/mpeg"},
    {"mp4", "video/mp4"},         {"mpe", "video/mpeg"},       {"mpeg", "video/mpeg"},
    {"mpg", "video/mpeg"},        {"mts", "video/mp2t"},       {"mxf", "application/mxf"},
    {"oga", "audio/ogg"},         {"ogg", "audio/ogg"},        {"ogv", "video/ogg"},
    {"opus", "audio/opus"},       {"pdf", "application/pdf"},  {"png", "image/png"},
    {"qt", "video/quicktime"},    {"snd", "audio/basic"},      {"ts", "video/mp2t"},
    {"txt", "text/plain"},        {"vob", "video/dvd"},        {"wav", "audio/vnd.wave"},
    {"weba", "audio/webm"},       {"webm", "video/webm"},      {"webp", "image/webp"},
    {"wma", "audio/x-ms-wma"},    {"wmv", "video/x-ms-wmv"},   {"xml", "application/xml"},
    {"zip", "application/zip"},
});

static_assert(std::ranges::is_sorted(types, {}, &std::pair<std::string_view, std::string_view>::first));

} // namespace

std::optional<std::string_view> mimeTypeForExtension(std::string_view fileExtension) {
    std::string lowered(fileExtension);
    std::ranges::transform(lowered, lowered.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    const auto found =
        std::ranges::lower_bound(types, std::string_view(lowered), {}, &decltype(types)::value_type::first);
    if (found == types.end() || found->first != lowered) {
        return std::nullopt;
    }
    return found->second;
}

bool isAudiovisual(std::string_view mimeType) {
    return mimeType.starts_with("video/") || mimeType.starts_with("audio/");
}

} // namespace corvanta
