#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequestEngine.hpp>
#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequestHandler.hpp>
#include <CorvantaSdkVideo/Commands/VideoOperationData.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoRequestStatus.hpp>
#include <platform/UUID.hpp>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace corvanta {

/// A long video operation: built and stored by a builder, run by `process()`, stopped by `cancel()`.
///
/// A snapshot: the truth about the status lies in the store, and the object doesn't follow it. Made as a
/// shared_ptr; a running `process()` keeps it alive. `process()` and `cancel()` may be called from any
/// thread.
class CorvantaSdkVideoRequest : public std::enable_shared_from_this<CorvantaSdkVideoRequest> {
  public:
    enum class Type { merge, encode, concat };
    using Status = CorvantaSdkVideoRequestStatus;
    using Result = CorvantaSdkVideoRequestResult;
    using Date = std::chrono::system_clock::time_point;

    CorvantaSdkVideoRequest(UUID id, Type type, Status status, CorvantaSdkVideoFileDescriptor output,
                            Date createdAt, Date updatedAt, std::optional<VideoEncodingData> encodingData,
                            std::optional<VideoMergeData> mergeData,
                            std::optional<VideoConcatData> concatData,
                            std::optional<std::string> errorMessage, std::optional<URL> outputPath,
                            std::shared_ptr<CorvantaSdkVideoRequestEngine> engine);

    const UUID id;
    const Type type;
    /// At the time when the object was made.
    const Status status;
    /// Where the result goes.
    const CorvantaSdkVideoFileDescriptor output;
    const Date createdAt;
    const Date updatedAt;
    const std::optional<std::string> errorMessage;

    /// The one of the request's type is set, unless its stored parameters can't be read.
    std::optional<VideoEncodingData> encodingData;
    std::optional<VideoMergeData> mergeData;
    std::optional<VideoConcatData> concatData;

    /// Absent on a newly built object, the stored location on one read from the store, the result's after a
    /// run.
    std::optional<URL> outputPath() const;

    const std::shared_ptr<CorvantaSdkVideoRequestEngine> engine;

    /// Runs the operation once. After a success it gives the same result again without running. While it
    /// runs, and after a failure, it throws `operationStillsInProgress`: to run a failed request again, fetch
    /// a new object. Throws what the engine throws: `userNotAuthenticated`, `operationNotFound` if the
    /// request isn't stored, `operationStillsInProgress` if another object runs it,
    /// `operationAlreadyCompleted` if one has run it, the checks' errors, or `concatFailed`, `mergeFailed`,
    /// `encodingFailed`.
    ///
    /// Asio's cancellation, or a stop token's, stops it in any phase and leaves the stored request
    /// `cancelled`: it throws what a failed run throws if ffmpeg ran, else Asio's `operation_aborted`. A run
    /// whose event loop is destroyed is stopped and `cancelled` as well.
    Task<Result> process();

    /// Stops a run of this request, started from whatever object of the same id, also in another process,
    /// which ends its run as soon as it sees the change in the store. Throws `operationNotFound` if there is
    /// no running command, as during the checks before it, `operationMustBeProcessingToBeCancelled` for a row
    /// left over by a dead process.
    void cancel();

  private:
    static Task<Result> run(std::shared_ptr<CorvantaSdkVideoRequest> self);
    CorvantaSdkVideoRequestHandler<Result>& requestHander();

    mutable std::mutex mutex_;
    std::optional<URL> outputPath_;
    std::optional<CorvantaSdkVideoRequestHandler<Result>> requestHander_;
};

/// The name of the case.
std::string_view name(CorvantaSdkVideoRequest::Type type);

} // namespace corvanta
