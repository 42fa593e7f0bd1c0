#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace corvanta {

/// What the builders store differently.
struct StoredOperation {
    LocalVideoRequest::OperationType type;
    std::string fileExtension;
    std::vector<URL> inputFiles;
    std::optional<std::string> rawData;
    /// Whether an empty file stands at the output during the insertion, for the store to take a bookmark of.
    bool placeholder = false;
};

/// What a new request does; which of them it is tells its type.
using OperationData = std::variant<VideoEncodingData, VideoMergeData, VideoConcatData>;

/// A request as it is before it has been stored.
std::shared_ptr<CorvantaSdkVideoRequest> newRequest(const UUID& id,
                                                    const CorvantaSdkVideoFileDescriptor& output,
                                                    const OperationData& data,
                                                    std::shared_ptr<CorvantaSdkVideoRequestEngine> engine);

/// Stores a newly built request as `idle` and leaves its output location empty. Reports nothing: a request
/// that could not be stored shows it when it is processed.
void saveRequest(const CorvantaSdkVideoRequest& request, const StoredOperation& operation, VideoStore& store);

} // namespace corvanta
