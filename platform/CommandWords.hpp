#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// Splits a command text into arguments: blanks separate, double quotes group, nothing else is special. An
/// unquoted word that is a "file" URL becomes its decoded path, since such a word is the absolute text of a
/// URL.
std::vector<std::string> splitCommand(std::string_view command);

} // namespace corvanta
