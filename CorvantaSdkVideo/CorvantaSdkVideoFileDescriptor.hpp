#pragma once

#include <platform/URL.hpp>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace corvanta {

/// The file extensions that the module itself chooses.
class FileExtension {
  public:
    enum Value { mp4, jpg };

    constexpr FileExtension(Value value) : value_(value) {}

    /// Nothing for any text but "mp4" and "jpg".
    static std::optional<FileExtension> fromRawValue(std::string_view text);
    std::string_view rawValue() const;

    friend bool operator==(FileExtension, FileExtension) = default;

  private:
    Value value_;
};

/// Where a platform keeps a user's files.
enum class SearchPathDirectory { caches, documents };

/// An output location. The extension comes later, when the operation knows it. A value.
class CorvantaSdkVideoFileDescriptor {
  public:
    /// A named file in the user's caches directory.
    static CorvantaSdkVideoFileDescriptor cache(std::string fileName);
    /// A named file in the user's documents directory.
    static CorvantaSdkVideoFileDescriptor files(std::string fileName);
    /// A path of the caller's choice, without its extension. It is read as a URL, so percent escapes, '?' and
    /// '#' have their URL meaning; `parseablePath` writes an arbitrary path so that it is read as it stands.
    static CorvantaSdkVideoFileDescriptor custom(std::string rawPath);

    /// The URL of the location with an extension. Nothing if a custom path doesn't make a URL.
    /// A custom bare path gives a URL without a scheme; read its `path()`.
    std::optional<URL> url(std::string_view fileExtension) const;

    SearchPathDirectory directory() const;

    friend bool operator==(const CorvantaSdkVideoFileDescriptor&,
                           const CorvantaSdkVideoFileDescriptor&) = default;

  private:
    friend struct std::hash<CorvantaSdkVideoFileDescriptor>;
    enum class Kind { cache, files, custom };

    CorvantaSdkVideoFileDescriptor(Kind kind, std::string name) : kind_(kind), name_(std::move(name)) {}

    Kind kind_;
    std::string name_;
};

/// The URL of a name with an extension in the caches or the documents directory.
URL defaultFileLocation(std::string_view fileName = "tmp", std::string_view fileExtension = "mp4",
                        SearchPathDirectory directory = SearchPathDirectory::documents);

/// The same under its older name.
URL fileDir(std::string_view fileName, std::string_view fileExtension, SearchPathDirectory directory);

} // namespace corvanta

template <>
struct std::hash<corvanta::CorvantaSdkVideoFileDescriptor> {
    std::size_t operator()(const corvanta::CorvantaSdkVideoFileDescriptor& descriptor) const noexcept;
};
