#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>

#include <platform/Directories.hpp>

#include <boost/container_hash/hash.hpp>

#include <utility>

namespace corvanta {

std::optional<FileExtension> FileExtension::fromRawValue(std::string_view text) {
    if (text == "mp4") {
        return mp4;
    }
    if (text == "jpg") {
        return jpg;
    }
    return std::nullopt;
}

std::string_view FileExtension::rawValue() const { return value_ == mp4 ? "mp4" : "jpg"; }

CorvantaSdkVideoFileDescriptor CorvantaSdkVideoFileDescriptor::cache(std::string fileName) {
    return {Kind::cache, std::move(fileName)};
}

CorvantaSdkVideoFileDescriptor CorvantaSdkVideoFileDescriptor::files(std::string fileName) {
    return {Kind::files, std::move(fileName)};
}

CorvantaSdkVideoFileDescriptor CorvantaSdkVideoFileDescriptor::custom(std::string rawPath) {
    return {Kind::custom, std::move(rawPath)};
}

std::optional<URL> CorvantaSdkVideoFileDescriptor::url(std::string_view fileExtension) const {
    if (kind_ == Kind::custom) {
        return URL::parse(name_ + '.' + std::string(fileExtension));
    }
    return fileDir(name_, fileExtension, directory());
}

SearchPathDirectory CorvantaSdkVideoFileDescriptor::directory() const {
    return kind_ == Kind::cache ? SearchPathDirectory::caches : SearchPathDirectory::documents;
}

URL defaultFileLocation(std::string_view fileName, std::string_view fileExtension,
                        SearchPathDirectory directory) {
    const URL base =
        directory == SearchPathDirectory::caches ? Directories::caches() : Directories::documents();
    return base.appendingPathComponent(fileName).appendingPathExtension(fileExtension);
}

URL fileDir(std::string_view fileName, std::string_view fileExtension, SearchPathDirectory directory) {
    return defaultFileLocation(fileName, fileExtension, directory);
}

} // namespace corvanta

std::size_t std::hash<corvanta::CorvantaSdkVideoFileDescriptor>::operator()(
    const corvanta::CorvantaSdkVideoFileDescriptor& descriptor) const noexcept {
    std::size_t seed = 0;
    boost::hash_combine(seed, static_cast<int>(descriptor.kind_));
    boost::hash_combine(seed, descriptor.name_);
    return seed;
}
