#pragma once

#include <optional>
#include <string_view>

namespace corvanta {

/// The MIME type of a file name extension (without the dot, in either case); nothing for an unknown one.
std::optional<std::string_view> mimeTypeForExtension(std::string_view fileExtension);

/// Whether a MIME type is video or audio.
bool isAudiovisual(std::string_view mimeType);

} // namespace corvanta
