#include "Inputs.hpp"

#include <platform/AssetReader.hpp>
#include <platform/FileManager.hpp>

using namespace corvanta;

namespace {

bool isTurnedUpright(const URL& url) {
    try {
        const auto transform = AssetReader(url).firstVideoTrackTransform();
        return transform && transform->b > 0 && transform->a == 0;
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

std::vector<CorvantaSdkVideoFile> inputFiles(const std::vector<std::string>& paths) {
    std::vector<CorvantaSdkVideoFile> files;
    files.reserve(paths.size());
    for (const std::string& path : paths) {
        files.emplace_back(URL::fromFilePath(path));
    }
    return files;
}

std::vector<URL> urlsOf(const std::vector<CorvantaSdkVideoFile>& files) {
    std::vector<URL> urls;
    urls.reserve(files.size());
    for (const CorvantaSdkVideoFile& file : files) {
        urls.push_back(file.url());
    }
    return urls;
}

void requireReadable(const std::vector<CorvantaSdkVideoFile>& files) {
    for (const CorvantaSdkVideoFile& file : files) {
        const std::string path = file.url().path();
        if (!FileManager::fileExists(path)) {
            throw CorvantaSdkVideoError(CorvantaSdkVideoError::notFoundVideo, "there is no " + path);
        }
        try {
            const AssetReader reader(file.url());
        } catch (const PlatformError& error) {
            throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed, detailsOf(error));
        }
    }
}

std::vector<URL> uprightClips(const std::vector<URL>& urls) {
    std::vector<URL> clips;
    for (const URL& url : urls) {
        if (isTurnedUpright(url)) {
            clips.push_back(url);
        }
    }
    return clips;
}
