#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace corvanta {

/// Decodes percent escapes. Gives nothing when an escape is malformed or the decoded bytes are not UTF-8.
std::optional<std::string> removingPercentEncoding(std::string_view text);

/// A location, held as its absolute text (RFC 3986, percent-encoded).
///
/// A value: immutable after construction, cheap to copy, safe to share between threads.
class URL {
  public:
    /// Empty: names nothing.
    URL() = default;

    /// Parses `text` as a URL reference. Characters that a URL can't hold (blanks, non-ASCII letters, a lone
    /// '%') are percent-encoded instead of refused. A text without a scheme is kept as a bare path.
    /// '?' and '#' start a query and a fragment: use `fromFilePath` for arbitrary file names.
    /// Gives nothing for an empty text and for an impossible scheme or authority.
    static std::optional<URL> parse(std::string_view text);

    /// The "file" URL of a path; a relative path is taken from the working directory. Every path can be held.
    static URL fromFilePath(std::string_view path);

    /// The whole text, percent-encoded, with its scheme if it has one.
    const std::string& absoluteString() const noexcept { return text_; }

    /// The path with all escapes decoded, byte for byte, without a trailing slash (the root excepted).
    std::string path() const;

    /// Empty for a bare path.
    std::string scheme() const;
    bool isFileURL() const;

    /// What follows the last dot of the last path component, without the dot; empty if there is none.
    std::string pathExtension() const;
    std::string lastPathComponent() const;

    URL appendingPathComponent(std::string_view name) const;
    URL appendingPathExtension(std::string_view fileExtension) const;

    friend bool operator==(const URL&, const URL&) = default;

  private:
    explicit URL(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

/// `path` written so that `URL::parse` reads it back as a bare path with that very `path()`: only what would
/// be misread ('%', '?', '#') is percent-encoded.
std::string parseablePath(std::string_view path);

} // namespace corvanta

template <>
struct std::hash<corvanta::URL> {
    std::size_t operator()(const corvanta::URL& url) const noexcept {
        return std::hash<std::string>{}(url.absoluteString());
    }
};
