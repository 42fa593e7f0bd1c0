#pragma once

#include <fstream>
#include <string>

namespace TALVO::UTILS {

/// A file path of wide characters; on disk it is UTF-8.
class Path {
  public:
    Path() = default;
    explicit Path(std::wstring path) : path_(std::move(path)) {}
    /// A null pointer is the empty path.
    explicit Path(wchar_t const* path) : path_(path != nullptr ? path : L"") {}

    void openIfstream(std::ifstream& stream, std::ios_base::openmode mode) const;
    void openOfstream(std::ofstream& stream, std::ios_base::openmode mode) const;

    bool isAbsolute() const;
    /// Takes ".", ".." and repeated separators out of an absolute path; false for any other path,
    /// of which only the separators become main ones.
    bool normalize();
    /// Puts a folder in front of a relative path; false for an absolute one.
    bool pushFront(std::wstring const& prefix);
    /// The text behind the last dot of the last component.
    std::wstring getFileExtension() const;
    std::wstring const& getFileNameWStr() const { return path_; }
    void replaceAllSeparatorsWithMainSeparator();

    static std::string convertWString2MBString(std::wstring const& wide);
    static std::wstring convertMBString2WString(std::string const& narrow);

  private:
    static std::wstring const separator_;

    std::wstring path_;
};

/// The stem: between the last `/` and the last dot behind it.
std::wstring getFileName(wchar_t const* path);
/// The text behind the last dot, wherever it stands.
std::wstring getFileExtension(wchar_t const* path);
std::string getString(wchar_t const* wide);

} // namespace TALVO::UTILS
