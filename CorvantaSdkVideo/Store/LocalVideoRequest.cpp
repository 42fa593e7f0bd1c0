#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>

#include <boost/container_hash/hash.hpp>

#include <array>

namespace corvanta {

namespace {

constexpr auto operationTypes = std::to_array<std::string_view>({"encode", "merge", "concat"});

// The path of a URL, if it stands in its text as it is.
std::optional<std::string_view> literalPath(const URL& url) {
    const std::string_view text = url.absoluteString();
    const auto holds = [&](char character) { return text.find(character) != std::string_view::npos; };
    if (!text.starts_with("file:///") || text.ends_with('/') || holds('%') || holds('?') || holds('#')) {
        return std::nullopt;
    }
    return text.substr(std::string_view("file://").size());
}

std::string_view withoutExtension(std::string_view path) {
    const std::size_t nameStart = path.rfind('/') + 1;
    const std::size_t dot = path.rfind('.');
    // A name that begins with its only dot, or ends with one, has no extension.
    const bool hasExtension = dot != std::string_view::npos && dot > nameStart && dot + 1 < path.size();
    return hasExtension ? path.substr(0, dot) : path;
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
    if (const auto path = literalPath(outputPath)) {
        return CorvantaSdkVideoFileDescriptor::custom(std::string(withoutExtension(*path)));
    }
    const std::string path = outputPath.path();
    return CorvantaSdkVideoFileDescriptor::custom(parseablePath(withoutExtension(path)));
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
