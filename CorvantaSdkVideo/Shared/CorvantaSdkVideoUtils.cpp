#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>

#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <platform/FileManager.hpp>

#include <system_error>

namespace corvanta {

URL CorvantaSdkVideoUtils::outputURL(std::string_view name, std::string_view fileExtension) {
    return defaultFileLocation(name, fileExtension, SearchPathDirectory::documents);
}

void CorvantaSdkVideoUtils::createEmptyFile(const URL& atURL) { FileManager::createFile(atURL.path()); }

void CorvantaSdkVideoUtils::deleteFileIfExists(const URL& atURL) {
    try {
        FileManager::removeItem(atURL.path());
    } catch (const std::system_error&) {
        // Whoever needs the place finds out by writing there.
    }
}

} // namespace corvanta
