#include "utils/path.hpp"

#include "utils/utf8.hpp"

#include <string_view>

namespace TALVO::UTILS {

std::wstring const Path::separator_ = L"/\\";

void Path::openIfstream(std::ifstream& stream, std::ios_base::openmode mode) const {
    stream.open(convertWString2MBString(path_), mode);
}

void Path::openOfstream(std::ofstream& stream, std::ios_base::openmode mode) const {
    stream.open(convertWString2MBString(path_), mode);
}

bool Path::isAbsolute() const { return !path_.empty() && path_.front() == separator_.front(); }

void Path::replaceAllSeparatorsWithMainSeparator() {
    for (wchar_t& character : path_)
        if (separator_.find(character) != std::wstring::npos)
            character = separator_.front();
}

bool Path::normalize() {
    replaceAllSeparatorsWithMainSeparator();
    if (!isAbsolute())
        return false;
    wchar_t const separator = separator_.front();
    std::wstring gathered;
    for (std::wstring_view rest = std::wstring_view(path_).substr(1); !rest.empty();) {
        std::size_t const end = rest.find(separator);
        std::wstring_view const component = rest.substr(0, end);
        if (component == L"..") {
            // The last character is the separator behind the component to be taken off.
            std::size_t const before =
                gathered.size() < 2 ? std::wstring::npos : gathered.rfind(separator, gathered.size() - 2);
            gathered.erase(before == std::wstring::npos ? 0 : before + 1);
        } else if (!component.empty() && component != L".") {
            gathered += component;
            if (end != std::wstring_view::npos)
                gathered += separator;
        }
        rest.remove_prefix(end == std::wstring_view::npos ? rest.size() : end + 1);
    }
    path_ = separator + gathered;
    return true;
}

bool Path::pushFront(std::wstring const& prefix) {
    if (isAbsolute())
        return false;
    bool const joined = prefix.empty() || separator_.find(prefix.back()) != std::wstring::npos;
    path_.insert(0, joined ? prefix : prefix + separator_.front());
    return true;
}

std::wstring Path::getFileExtension() const {
    std::size_t const dot = path_.rfind(L'.');
    std::size_t const separator = path_.find_last_of(separator_);
    if (dot == std::wstring::npos || (separator != std::wstring::npos && dot < separator))
        return {};
    return path_.substr(dot + 1);
}

std::string Path::convertWString2MBString(std::wstring const& wide) { return toUtf8(wide); }

std::wstring Path::convertMBString2WString(std::string const& narrow) { return fromUtf8(narrow); }

std::wstring getFileName(wchar_t const* path) {
    std::wstring_view const whole(path);
    std::size_t const slash = whole.rfind(L'/');
    std::size_t const begin = slash == std::wstring_view::npos ? 0 : slash + 1;
    std::size_t const dot = whole.rfind(L'.');
    bool const hasDot = dot != std::wstring_view::npos && dot >= begin;
    return std::wstring(whole.substr(begin, hasDot ? dot - begin : std::wstring_view::npos));
}

std::wstring getFileExtension(wchar_t const* path) {
    std::wstring_view const whole(path);
    std::size_t const dot = whole.rfind(L'.');
    return dot == std::wstring_view::npos ? std::wstring() : std::wstring(whole.substr(dot + 1));
}

std::string getString(wchar_t const* wide) { return toUtf8(wide); }

} // namespace TALVO::UTILS
