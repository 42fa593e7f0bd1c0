#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>

#include <boost/container_hash/hash.hpp>

#include <algorithm>
#include <array>

namespace corvanta {

namespace {

constexpr auto operationTypes = std::to_array<std::string_view>({"encode", "merge", "concat"});

// Most URLs are plain file URLs, whose path stands in their text.
std::string pathOf(const URL& url) {
    constexpr std::string_view prefix = "file://";
    const std::string_view text = url.absoluteString();
    const auto needsParsing = [](char character) {
        return character == '%' || character == '?' || character == '#';
    };
    const bool isPlain = text.starts_with("file:///") && !text.ends_with('/') &&
                         std::none_of(text.begin(), text.end(), needsParsing);
    return isPlain ? std::string(text.substr(prefix.size())) : url.path();
}

} // namespace

std::optional<LocalVideoRequest::Status> LocalVideoRequest::statusWithRawValue(std::int64_t rawValue) {
    if (rawValue < static_cast<int>(Status::processing) || rawValue > static_cast<int>(Status::idle)) {
        return std::nullopt;
    }
    return static_cast<Status>(rawValue);
}

std::optional<LocalVideoRequest::OperationType>
LocalVideoRequest::typeWithRawValue(std::string_view rawValue) {
    for (std::size_t number = 0; number < operationTypes.size(); ++number) {
        if (operationTypes[number] == rawValue) {
            return static_cast<OperationType>(number);
        }
    }
    return std::nullopt;
}

std::string_view LocalVideoRequest::rawValue(OperationType type) {
    return operationTypes.at(static_cast<std::size_t>(type));
}

CorvantaSdkVideoFileDescriptor storedOutput(const URL& outputPath) {
    std::string path = pathOf(outputPath);
    const std::size_t nameStart = path.rfind('/') + 1;
    const std::size_t dot = path.rfind('.');
    // A name that begins with its only dot, or ends with one, has no extension.
    if (dot != std::string::npos && dot > nameStart && dot + 1 < path.size()) {
        path.resize(dot);
    }
    return CorvantaSdkVideoFileDescriptor::custom(parseablePath(path));
}

} // namespace corvanta

std::size_t std::hash<corvanta::LocalVideoRequestFile>::operator()(
    const corvanta::LocalVideoRequestFile& file) const noexcept {
    std::size_t seed = std::hash<corvanta::URL>{}(file.path);
    boost::hash_combine(seed, file.index);
    return seed;
}

std::size_t std::hash<corvanta::LocalVideoRequest>::operator()(
    const corvanta::LocalVideoRequest& request) const noexcept {
    using Text = std::hash<std::optional<std::string>>;
    std::size_t seed = corvanta::UUIDHash{}(request.id);
    boost::hash_combine(seed, static_cast<int>(request.status));
    boost::hash_combine(seed, std::hash<corvanta::URL>{}(request.outputPath));
    boost::hash_combine(seed, std::hash<corvanta::CorvantaSdkVideoFileDescriptor>{}(request.output));
    boost::hash_combine(seed, static_cast<int>(request.type));
    boost::hash_combine(seed, Text{}(request.error));
    for (const corvanta::LocalVideoRequestFile& file : request.inputFiles) {
        boost::hash_combine(seed, std::hash<corvanta::LocalVideoRequestFile>{}(file));
    }
    boost::hash_combine(seed, Text{}(request.rawData));
    boost::hash_combine(seed, Text{}(request.processId));
    boost::hash_combine(seed, request.createdAt.time_since_epoch().count());
    boost::hash_combine(seed, request.updatedAt.time_since_epoch().count());
    return seed;
}
