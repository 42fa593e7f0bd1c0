#include <platform/URL.hpp>

#include <boost/locale/utf.hpp>
#include <boost/url/grammar/charset.hpp>
#include <boost/url/grammar/hexdig_chars.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/rfc/pchars.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace corvanta {

namespace urls = boost::urls;

namespace {

constexpr auto pathCharacters = urls::pchars + '/';
constexpr auto queryCharacters = urls::pchars + urls::grammar::lut_chars("/?");

bool isEscape(std::string_view text, std::size_t position) {
    return text[position] == '%' && position + 2 < text.size() &&
           urls::grammar::hexdig_chars(text[position + 1]) && urls::grammar::hexdig_chars(text[position + 2]);
}

enum class Escapes { keep, encode };

template <typename CharacterSet>
std::string encode(std::string_view text, const CharacterSet& allowed, Escapes escapes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto stands = [&allowed](char character) { return character != '%' && allowed(character); };
    // Most texts stand as they are, and are copied at once.
    const auto odd = std::find_if_not(text.begin(), text.end(), stands);
    std::string encoded(text.begin(), odd);
    for (auto position = static_cast<std::size_t>(odd - text.begin()); position < text.size(); ++position) {
        const char character = text[position];
        const bool kept = escapes == Escapes::keep && isEscape(text, position);
        if (kept || stands(character)) {
            encoded += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            encoded += '%';
            encoded += digits[byte >> 4U];
            encoded += digits[byte & 0xFU];
        }
    }
    return encoded;
}

// Nothing for a malformed escape.
std::optional<std::string> decoded(std::string_view text) {
    std::string bytes(text.substr(0, text.find('%')));
    for (std::size_t position = bytes.size(); position < text.size(); ++position) {
        if (text[position] != '%') {
            bytes += text[position];
            continue;
        }
        if (!isEscape(text, position)) {
            return std::nullopt;
        }
        const int high = urls::grammar::hexdig_value(text[position + 1]);
        const int low = urls::grammar::hexdig_value(text[position + 2]);
        bytes += static_cast<char>(high * 16 + low);
        position += 2;
    }
    return bytes;
}

bool isUTF8(std::string_view bytes) {
    namespace utf = boost::locale::utf;
    for (auto position = bytes.begin(); position != bytes.end();) {
        const utf::code_point point = utf::utf_traits<char>::decode(position, bytes.end());
        if (point == utf::illegal || point == utf::incomplete) {
            return false;
        }
    }
    return true;
}

// The length of "scheme:" and "//authority" in front of the path, by the generic syntax of RFC 3986, appendix
// B.
std::size_t prefixLength(std::string_view text) {
    std::size_t length = 0;
    const std::size_t delimiter = text.find_first_of(":/?#");
    if (delimiter != std::string_view::npos && delimiter > 0 && text[delimiter] == ':') {
        length = delimiter + 1;
    }
    if (text.substr(length).starts_with("//")) {
        length = std::min(text.size(), text.find_first_of("/?#", length + 2));
    }
    return length;
}

// Where a query or a fragment ends the path, or the end of the text.
std::size_t pathEnd(std::string_view text, std::size_t pathStart) {
    return std::min({text.find('?', pathStart), text.find('#', pathStart), text.size()});
}

} // namespace

std::optional<std::string> removingPercentEncoding(std::string_view text) {
    auto bytes = decoded(text);
    return bytes && isUTF8(*bytes) ? std::move(bytes) : std::nullopt;
}

std::optional<URL> URL::parse(std::string_view text) {
    if (text.empty()) {
        return std::nullopt;
    }
    const std::size_t pathStart = prefixLength(text);
    const std::size_t queryStart = pathEnd(text, pathStart);
    const std::size_t fragmentStart = std::min(text.size(), text.find('#', queryStart));
    const auto query = text.substr(queryStart, fragmentStart - queryStart);
    const auto fragment = text.substr(fragmentStart);

    std::string encoded(text.substr(0, pathStart));
    encoded += encode(text.substr(pathStart, queryStart - pathStart), pathCharacters, Escapes::keep);
    if (!query.empty()) {
        encoded += '?' + encode(query.substr(1), queryCharacters, Escapes::keep);
    }
    if (!fragment.empty()) {
        encoded += '#' + encode(fragment.substr(1), queryCharacters, Escapes::keep);
    }
    if (!urls::parse_uri_reference(encoded)) {
        return std::nullopt;
    }
    return URL(std::move(encoded));
}

URL URL::fromFilePath(std::string_view path) {
    std::string absolute(path);
    if (!path.starts_with('/')) {
        std::error_code ignored;
        // A working directory that is gone gives no path; the root stands in for it.
        absolute = ("/" / std::filesystem::current_path(ignored) / path).string();
    }
    return URL("file://" + encode(absolute, pathCharacters, Escapes::encode));
}

std::string URL::path() const {
    const std::size_t start = prefixLength(text_);
    // A URL holds no malformed escape.
    std::string path = *decoded(std::string_view(text_).substr(start, pathEnd(text_, start) - start));
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

std::string URL::scheme() const { return std::string(urls::url_view(text_).scheme()); }

bool URL::isFileURL() const { return urls::url_view(text_).scheme_id() == urls::scheme::file; }

std::string URL::lastPathComponent() const {
    const std::string whole = path();
    return whole.substr(whole.rfind('/') + 1);
}

std::string URL::pathExtension() const {
    const std::string name = lastPathComponent();
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? std::string() : name.substr(dot + 1);
}

URL URL::appendingPathComponent(std::string_view name) const {
    std::string text;
    text.reserve(text_.size() + 1 + name.size());
    text += text_;
    text += text_.ends_with('/') ? "" : "/";
    text += encode(name, pathCharacters, Escapes::encode);
    return URL(std::move(text));
}

URL URL::appendingPathExtension(std::string_view fileExtension) const {
    return URL(text_ + '.' + encode(fileExtension, pathCharacters, Escapes::encode));
}

std::string parseablePath(std::string_view path) {
    // Two slashes in front would start an authority, a colon in a relative path would end a scheme.
    if (path.starts_with("//")) {
        return "/%2F" + parseablePath(path.substr(2));
    }
    const bool relative = !path.starts_with('/');
    const auto readAsPath = [relative](char character) {
        return character != '?' && character != '#' && (character != ':' || !relative);
    };
    return encode(path, readAsPath, Escapes::encode);
}

} // namespace corvanta
