#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>

#include <string>
#include <utility>

namespace corvanta {

namespace {

URL parsed(std::string_view path) {
    if (auto url = URL::parse(path)) {
        return *std::move(url);
    }
    throw CorvantaSdkVideoError(CorvantaSdkVideoError::invalidFile,
                                "\"" + std::string(path) + "\" can't be read as a URL");
}

} // namespace

CorvantaSdkVideoFile::CorvantaSdkVideoFile(URL url) : url_(std::move(url)) {}

CorvantaSdkVideoFile::CorvantaSdkVideoFile(std::string_view path) : url_(parsed(path)) {}

} // namespace corvanta
