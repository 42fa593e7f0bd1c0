#pragma once

#include <string>
#include <string_view>

namespace TALVO::UTILS {

/// Both throw a TalvoException for a text that can't be put into the other form: an overlong or cut
/// sequence, a surrogate, a value above 0x10FFFF.
std::string toUtf8(std::wstring_view wide);
std::wstring fromUtf8(std::string_view narrow);

} // namespace TALVO::UTILS
