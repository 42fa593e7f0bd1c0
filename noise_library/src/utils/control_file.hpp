#pragma once

#include "utils/path.hpp"

#include <string>
#include <utility>
#include <vector>

namespace TALVO::UTILS {

/// The pairs of a control file in their order. False when it can't be opened or a line has no value;
/// the pairs before that line are kept.
bool readControlFile(std::vector<std::pair<std::string, std::string>>& out, Path& path);

/// The first word of a line and the rest without the blanks around it; both empty when either is.
std::pair<std::string, std::string> getKeyValue(std::string const& line);

} // namespace TALVO::UTILS
