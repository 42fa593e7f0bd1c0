#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <optional>
#include <string>
#include <string_view>
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

/// Stores a newly built request as `idle` and leaves its output location empty. Reports nothing: a request
/// that could not be stored shows it when it is processed.
void saveRequest(const CorvantaSdkVideoRequest& request, const StoredOperation& operation, VideoStore& store);

} // namespace corvanta
