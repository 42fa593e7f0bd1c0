#include "utils/control_file.hpp"

#include <fstream>

namespace TALVO::UTILS {
namespace {

constexpr char blanks[] = " \t\n\v\f\r";

} // namespace

bool readControlFile(std::vector<std::pair<std::string, std::string>>& out, Path& path) {
    std::ifstream file;
    path.openIfstream(file, std::ios_base::in);
    if (!file.is_open())
        return false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#') || line.find_first_not_of(blanks) == std::string::npos)
            continue;
        auto pair = getKeyValue(line);
        if (pair.first.empty())
            return false;
        out.push_back(std::move(pair));
    }
    return true;
}

std::pair<std::string, std::string> getKeyValue(std::string const& line) {
    constexpr auto none = std::string::npos;
    std::size_t const keyBegin = line.find_first_not_of(blanks);
    std::size_t const keyEnd = keyBegin == none ? none : line.find_first_of(blanks, keyBegin);
    std::size_t const valueBegin = keyEnd == none ? none : line.find_first_not_of(blanks, keyEnd);
    if (valueBegin == none)
        return {};
    std::size_t const valueEnd = line.find_last_not_of(blanks) + 1;
    return {line.substr(keyBegin, keyEnd - keyBegin), line.substr(valueBegin, valueEnd - valueBegin)};
}

} // namespace TALVO::UTILS
