#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequestFile.hpp>
#include <platform/URL.hpp>
#include <platform/UUID.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// The stored form of a video operation. A plain value, compared and hashed over all its fields.
struct LocalVideoRequest {
    /// The raw values are those of `CorvantaSdkVideoRequestStatus`, case by case; stores rely on it.
    enum class Status : int {
        /// An engine is working on it.
        processing = 0,
        /// It failed.
        error = 1,
        /// It was cancelled, or found `processing` at start-up.
        cancelled = 2,
        /// It finished.
        completed = 3,
        /// It was built and not yet run.
        idle = 4,
    };

    /// Which engine runs it.
    enum class OperationType { encode, merge, concat };

    /// A point in time; stores keep it to the nanosecond.
    using Date = std::chrono::system_clock::time_point;

    /// Chosen by the builder.
    UUID id;
    Status status;
    /// The file that the request writes, with extension.
    URL outputPath;
    /// Not stored: a read gives `storedOutput` of the stored output path.
    CorvantaSdkVideoFileDescriptor output;
    OperationType type;
    /// Text of the failure. Set by updates alone.
    std::optional<std::string> error;
    /// In ascending index.
    std::vector<LocalVideoRequestFile> inputFiles;
    /// JSON text of the operation's parameters, opaque to stores.
    std::optional<std::string> rawData;
    /// Identifier of the running ffmpeg command, opaque to stores. Set by updates alone.
    std::optional<std::string> processId;
    Date createdAt;
    /// The time of the last update.
    Date updatedAt;

    /// Nothing for a number that is no status.
    static std::optional<Status> statusWithRawValue(std::int64_t rawValue);
    /// From "encode", "merge" or "concat"; nothing for any other text.
    static std::optional<OperationType> typeWithRawValue(std::string_view rawValue);
    static std::string_view rawValue(OperationType type);

    friend bool operator==(const LocalVideoRequest&, const LocalVideoRequest&) = default;
};

/// The output location that a store gives back for a stored output path: `custom` with the path without its
/// extension, written so that odd file names read as they stand.
CorvantaSdkVideoFileDescriptor storedOutput(const URL& outputPath);

} // namespace corvanta

template <>
struct std::hash<corvanta::LocalVideoRequest> {
    std::size_t operator()(const corvanta::LocalVideoRequest& request) const noexcept;
};
