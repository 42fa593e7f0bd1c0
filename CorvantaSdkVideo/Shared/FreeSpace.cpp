#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>

#include <filesystem>
#include <system_error>

namespace corvanta {

void requireFreeSpace(const std::string& path, std::int64_t bytes, CorvantaSdkVideoError::Case error) {
    const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
    std::error_code failed;
    const auto space = std::filesystem::space(folder, failed);
    if (failed || bytes <= 0 || space.available >= static_cast<std::uintmax_t>(bytes)) {
        return;
    }
    constexpr std::int64_t megabyte = 1000 * 1000;
    throw CorvantaSdkVideoError(error, folder.native() + ": no space: needs " +
                                           std::to_string((bytes + megabyte - 1) / megabyte) + " MB");
}

} // namespace corvanta
