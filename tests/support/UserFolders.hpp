#pragma once

#include "support/ScopedVariable.hpp"
#include "support/TemporaryDirectory.hpp"

#include <fstream>

namespace corvanta::test {

/// A new folder that holds the module's per-user directories as long as the object lives. Start no threads
/// before it: it sets environment variables.
class UserFolders {
  public:
    explicit UserFolders(const std::filesystem::path& base = std::filesystem::temp_directory_path())
        : root_(base) {
        std::filesystem::create_directory(folder());
    }

    /// A base whose files lie in memory, for tests that would wait long for a disk.
    static std::filesystem::path memory() {
        return std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path();
    }

    /// An empty folder that is none of the module's.
    std::filesystem::path folder() const { return root_.path() / "folder"; }
    std::string file(const std::string& name) const { return folder() / name; }

    /// Writes a small file and gives its path.
    std::string make(const std::string& name, const std::string& contents = "content") const {
        std::ofstream(file(name), std::ios::binary) << contents;
        return file(name);
    }

  private:
    TemporaryDirectory root_;
    ScopedVariable data_{"XDG_DATA_HOME", root_.file("data")};
    ScopedVariable cache_{"XDG_CACHE_HOME", root_.file("cache")};
};

} // namespace corvanta::test
