#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Extensions of file names, without the dot and in lower case.

/// Those of videos and sounds, as a shell offers them for completion.
const std::vector<std::string>& mediaExtensions();

/// Whether a name that ends so is meant as a file of a kind, be it of media, pictures or texts.
bool isKnownExtension(std::string_view extension);

/// Whether a join can be asked to write such a file.
bool isJoinedExtension(std::string_view extension);
