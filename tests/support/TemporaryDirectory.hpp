#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace corvanta::test {

/// A new empty directory that goes with its contents when the object goes.
class TemporaryDirectory {
  public:
    explicit TemporaryDirectory(const std::filesystem::path& base = std::filesystem::temp_directory_path()) {
        std::string pattern = base / "corvanta-test-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), pattern);
        }
        path_ = pattern;
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    /// The plain path of a name in it; nothing is made there.
    std::string file(std::string_view name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

/// The names of what is in some folders.
inline std::vector<std::string> namesIn(std::initializer_list<std::filesystem::path> folders) {
    std::vector<std::string> names;
    for (const std::filesystem::path& folder : folders) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename());
        }
    }
    return names;
}

} // namespace corvanta::test
