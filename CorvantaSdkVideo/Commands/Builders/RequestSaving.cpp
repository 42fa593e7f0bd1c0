#include <CorvantaSdkVideo/Commands/Builders/RequestSaving.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>

#include <platform/FileManager.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>
#include <utility>

namespace corvanta {

namespace {

// A relative path would mean another file to a process that runs elsewhere.
URL absolute(const URL& file) {
    const std::string path = file.path();
    return path.starts_with('/') || path.find('\0') != path.npos ? file : URL::fromFilePath(path);
}

std::vector<LocalVideoRequestFile> indexed(const std::vector<URL>& files) {
    std::vector<LocalVideoRequestFile> inputFiles;
    inputFiles.reserve(files.size());
    for (const URL& file : files) {
        inputFiles.push_back({absolute(file), static_cast<std::int64_t>(inputFiles.size())});
    }
    return inputFiles;
}

template <typename Data>
std::optional<Data> only(const OperationData& data) {
    const Data* const held = std::get_if<Data>(&data);
    return held != nullptr ? std::optional(*held) : std::nullopt;
}

} // namespace

std::shared_ptr<CorvantaSdkVideoRequest> newRequest(const UUID& id,
                                                    const CorvantaSdkVideoFileDescriptor& output,
                                                    const OperationData& data,
                                                    std::shared_ptr<CorvantaSdkVideoRequestEngine> engine) {
    using Type = CorvantaSdkVideoRequest::Type;
    // In the variant's order.
    constexpr std::array types{Type::encode, Type::merge, Type::concat};
    return std::make_shared<CorvantaSdkVideoRequest>(
        id, types[data.index()], CorvantaSdkVideoRequest::Status::idle, output,
        std::chrono::system_clock::now(), std::chrono::system_clock::now(), only<VideoEncodingData>(data),
        only<VideoMergeData>(data), only<VideoConcatData>(data), std::nullopt, std::nullopt,
        std::move(engine));
}

void saveRequest(const CorvantaSdkVideoRequest& request, const StoredOperation& operation,
                 VideoStore& store) {
    const auto outputURL = request.output.url(operation.fileExtension);
    if (!outputURL) {
        return;
    }
    // An output that is one of the inputs is refused by the run; until then the file must not be lost.
    const bool isInput = std::ranges::any_of(operation.inputFiles, [&](const URL& input) {
        return FileManager::isSameFile(input.path(), outputURL->path());
    });
    if (operation.placeholder && !isInput) {
        CorvantaSdkVideoUtils::createEmptyFile(*outputURL);
    }
    const LocalVideoRequest record{.id = request.id,
                                   .status = LocalVideoRequest::Status::idle,
                                   .outputPath = absolute(*outputURL),
                                   .output = request.output,
                                   .type = operation.type,
                                   .error = std::nullopt,
                                   .inputFiles = indexed(operation.inputFiles),
                                   .rawData = operation.rawData,
                                   .processId = std::nullopt,
                                   .createdAt = std::chrono::system_clock::now(),
                                   .updatedAt = std::chrono::system_clock::now()};
    try {
        store.insert(record);
    } catch (const std::exception& error) {
        Logger::logError(Event::insertRequest, EventMessage::insertRequestFailed(error));
        return;
    }
    if (!isInput) {
        CorvantaSdkVideoUtils::deleteFileIfExists(*outputURL);
    }
}

} // namespace corvanta
