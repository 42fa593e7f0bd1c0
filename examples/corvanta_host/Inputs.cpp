#include "Inputs.hpp"

#include "Run.hpp"

#include <filesystem>
#include <system_error>

using namespace corvanta;

std::vector<CorvantaSdkVideoFile> inputFiles(const std::vector<std::string>& paths) {
    std::vector<CorvantaSdkVideoFile> files;
    files.reserve(paths.size());
    for (const std::string& path : paths) {
        files.emplace_back(URL::fromFilePath(path));
    }
    return files;
}

void requireThere(const std::vector<CorvantaSdkVideoFile>& files) {
    for (const CorvantaSdkVideoFile& file : files) {
        const std::string path = file.url().path();
        std::error_code absent;
        if (!std::filesystem::exists(path, absent)) {
            throw CorvantaSdkVideoError(CorvantaSdkVideoError::notFoundVideo, "there is no " + path);
        }
    }
}

std::vector<CorvantaSdkVideoInformation> requireReadable(const std::vector<CorvantaSdkVideoFile>& files) {
    requireThere(files);
    return runInterruptible(CorvantaSdkVideo->getVideosInformation(files));
}
