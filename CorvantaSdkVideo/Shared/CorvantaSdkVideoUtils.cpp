#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>

#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <platform/FileManager.hpp>

#include <system_error>

namespace corvanta {

URL CorvantaSdkVideoUtils::outputURL(std::string_view name, std::string_view fileExtension) {
    return defaultFileLocation(name, fileExtension, SearchPathDirectory::documents);
}

// The name alone is taken: what it links to, or shares its contents with, is another's file.
void CorvantaSdkVideoUtils::createEmptyFile(const URL& atURL) {
    deleteFileIfExists(atURL);
    FileManager::createNewFile(atURL.path());
}

void CorvantaSdkVideoUtils::deleteFileIfExists(const URL& atURL) {
    try {
        FileManager::removeItem(atURL.path());
    } catch (const std::system_error&) {
        // Whoever needs the place finds out by writing there.
    }
}

} // namespace corvanta
