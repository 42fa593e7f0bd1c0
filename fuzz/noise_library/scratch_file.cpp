#include "noise_library/scratch_file.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace noise_fuzz {
namespace {

struct Folder {
    std::filesystem::path path;

    Folder() {
        std::string name = "/dev/shm/noise-fuzz-XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            std::abort();
        path = name;
    }
    ~Folder() {
        std::error_code ignored; // a leftover must not look like a finding
        std::filesystem::remove_all(path, ignored);
    }
};

std::filesystem::path const& folder() {
    static Folder const made;
    return made.path;
}

} // namespace

std::wstring scratchFolder() { return folder().wstring() + L"/"; }

std::wstring writeScratchFile(char const* name, void const* data, std::size_t size) {
    std::ofstream(folder() / name, std::ios::binary)
        .write(static_cast<char const*>(data), static_cast<std::streamsize>(size));
    return (folder() / name).wstring();
}

void silence() {
    std::cout.rdbuf(nullptr);
    std::cerr.rdbuf(nullptr);
}

} // namespace noise_fuzz
