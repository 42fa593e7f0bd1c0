#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>

#include <vector>

namespace corvanta {

inline std::vector<URL> urls(const std::vector<CorvantaSdkVideoFile>& files) {
    std::vector<URL> result;
    result.reserve(files.size());
    for (const CorvantaSdkVideoFile& file : files) {
        result.push_back(file.url());
    }
    return result;
}

} // namespace corvanta
