#include <platform/FileManager.hpp>

#include <platform/UniqueFd.hpp>

#include <filesystem>
#include <fstream>

#include <fcntl.h>

namespace corvanta::FileManager {

namespace fs = std::filesystem;

namespace {

bool isName(const std::string& path) { return !path.empty() && path.find('\0') == std::string::npos; }

} // namespace

bool fileExists(const std::string& path) {
    std::error_code ignored;
    return isName(path) && fs::exists(path, ignored);
}

bool isEndless(const std::string& path) {
    std::error_code ignored;
    const auto type = isName(path) ? fs::status(path, ignored).type() : fs::file_type::not_found;
    return type == fs::file_type::fifo || type == fs::file_type::socket || type == fs::file_type::character;
}

bool isSameFile(const std::string& left, const std::string& right) {
    std::error_code ignored;
    return isName(left) && isName(right) && fs::equivalent(left, right, ignored);
}

bool createFile(const std::string& path, std::string_view contents) {
    // Opening a pipe would wait for its reader.
    if (!isName(path) || isEndless(path)) {
        return false;
    }
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    file.close();
    return file.good();
}

bool createNewFile(const std::string& path) {
    constexpr mode_t readableByAll = 0666;
    return isName(path) &&
           UniqueFd(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, readableByAll))
                   .get() >= 0;
}

void removeItem(const std::string& path) {
    if (!isName(path)) {
        throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory), path);
    }
    if (!fs::remove(path)) {
        throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory), path);
    }
}

} // namespace corvanta::FileManager
