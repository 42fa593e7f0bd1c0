#include "Commands.hpp"

#include <filesystem>

using namespace corvanta;

std::vector<CorvantaSdkVideoFile> inputFiles(const std::vector<std::string>& paths) {
    std::vector<CorvantaSdkVideoFile> files;
    files.reserve(paths.size());
    for (const std::string& path : paths) {
        files.emplace_back(URL::fromFilePath(path));
    }
    return files;
}

CorvantaSdkVideoFileDescriptor outputLocation(const std::string& path) {
    const auto absolute = std::filesystem::absolute(path).lexically_normal();
    return CorvantaSdkVideoFileDescriptor::custom(parseablePath(absolute.string()));
}
