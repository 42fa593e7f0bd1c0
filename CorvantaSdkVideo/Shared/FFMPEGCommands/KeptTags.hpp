#pragma once

#include <platform/URL.hpp>

#include <string>
#include <string_view>

/// The options by which a command keeps the tags of its input; each with a blank before it.
namespace corvanta {

/// Whether ffmpeg writes the output, whose extension chooses the container, as mp4 or a like one.
bool isMP4Family(std::string_view output);

/// What an output of that family needs to keep an application's own tags ("com.example.place").
std::string applicationTagOptions();

/// Options that keep the first input's title, date and place and other tags of the whole file, as the input
/// of that number. `output` is the file that is written.
std::string keptTags(const URL& first, int input, std::string_view output);

} // namespace corvanta
