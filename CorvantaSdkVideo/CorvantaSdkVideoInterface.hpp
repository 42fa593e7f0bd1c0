#pragma once

#include <CorvantaSdkVideo/Commands/Builders/ConcatBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/EncodingBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/JoinBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Builders/MergeBuilder.hpp>
#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoProgress.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoThumbnailInputVideo.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaSdkVideoNoiseCancellationEngine.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>
#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStoreError.hpp>
#include <platform/Stream.hpp>
#include <platform/Task.hpp>
#include <platform/UUID.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// What the module offers to its host. Safe from any thread. Every operation that can fail throws
/// CorvantaSdkVideoError, `userNotAuthenticated` first of all, unless it says otherwise; one that is stopped
/// by Asio's cancellation, Asio's `operation_aborted`. An output that is one of its inputs, under whatever
/// name, fails with the operation's own error.
class CorvantaSdkVideoInterface {
  public:
    virtual ~CorvantaSdkVideoInterface() = default;

    /// Probes the files one after the other; the records come in their order. Throws `invalidInputFiles`
    /// before any probe if the list is empty (`notEnoughVideos`) or a file is not there
    /// (`inputContainsNonExistingFiles`), else the first failed probe's `getInformationFailed` or
    /// `missingVideoTrackToMerge`.
    virtual Task<std::vector<CorvantaSdkVideoInformation>>
    getVideosInformation(std::vector<CorvantaSdkVideoFile> input) = 0;

    /// A new noise engine at each call.
    virtual std::shared_ptr<CorvantaSdkVideoNoiseCancellationEngine> engine() = 0;

    /// Writes the frame at `position` milliseconds as a JPEG file, replacing an older one. Sizes are pixels;
    /// an absent one keeps the aspect, and with neither the frame keeps its size. ffmpeg decodes from the
    /// start of the file, so a late position takes long.
    ///
    /// Throws `notFoundVideo` (no such input, or the output gives no URL), `invalidThumbnailWidth` or
    /// `invalidThumbnailHeight` (negative), `invalidPositionInVideo` (negative, or not before the file's
    /// end), `unableToDeleteExistingThumbnail`, `thumbnailGenerationFailed` (refused by ffmpeg, or no frame
    /// there, as past a picture that is shorter than its sound), and the asset reader's own PlatformError for
    /// a file whose duration can't be read.
    virtual Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output,
                      double position = 1000.0, std::optional<std::int64_t> width = std::nullopt,
                      std::optional<std::int64_t> height = std::nullopt) = 0;

    /// The same, telling `onProgress` of its phases: of a single frame ffmpeg knows no fraction before its
    /// end.
    virtual Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, double position,
                      std::optional<std::int64_t> width, std::optional<std::int64_t> height,
                      CorvantaSdkVideoProgressCallback onProgress) = 0;

    /// Writes a JPEG file with `columns` by `rows` frames of a video, evenly spread and in reading order:
    /// each from the middle of its part. `width` is that of one frame, in pixels; its shape is kept, and
    /// upright videos stand upright. Each frame is sought, so that a long video takes no longer than a short
    /// one.
    ///
    /// Throws `notFoundVideo` (no such input, or the output gives no URL), `invalidThumbnailWidth` (less than
    /// one column or pixel, or more than 65500 pixels in all), `invalidThumbnailHeight` (less than one row,
    /// or more than 400 frames) and `thumbnailGenerationFailed`.
    virtual Task<CorvantaSdkVideoThumbnailResult>
    contactSheet(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, std::int64_t columns = 4,
                 std::int64_t rows = 3, std::int64_t width = 320,
                 CorvantaSdkVideoProgressCallback onProgress = {}) = 0;

    /// Whether the files are alike enough for a concat. Too few or missing files are errors, different ones a
    /// "no".
    virtual Task<bool> canConcat(std::vector<CorvantaSdkVideoFile> input) = 0;

    /// Why the answer is a "no": the first difference from the first file, or the file that can't be read,
    /// with its `details()`. Nothing for a "yes".
    virtual Task<std::optional<CorvantaSdkVideoError>>
    obstacleToConcat(std::vector<CorvantaSdkVideoFile> input) = 0;

    /// What a cut of a video would do, in seconds from its start. Encodes nothing, and reads the surroundings
    /// of both ends alone. Throws `notFoundVideo` or `invalidFile`, `invalidTrimRange`, or PlatformError for
    /// a file without a picture.
    virtual Task<CorvantaSdkVideoCutInspection> cutInspection(CorvantaSdkVideoFile file, double start,
                                                              double end) = 0;

    /// What a join of the files would do, and why: whether they are copied, and else at which size and rate
    /// they are encoded. Reads the files' heads; of tracks that state no length, what tells it. Throws
    /// `invalidInputFiles` for less than two files or one that isn't there, `getInformationFailed` for one
    /// that can't be read, `invalidResolution`, and `mergeFailed` for files that can be neither copied nor
    /// encoded as one.
    virtual Task<CorvantaSdkVideoJoinInspection> joinInspection(std::vector<CorvantaSdkVideoFile> input,
                                                                CorvantaSdkVideoJoinOptions options = {}) = 0;

    /// Makes one video of several: copied if that is possible, else encoded.
    virtual ::corvanta::JoinBuilder JoinBuilder(std::vector<CorvantaSdkVideoFile> input,
                                                CorvantaSdkVideoFileDescriptor output) = 0;
    /// Joins unlike videos by re-encoding them.
    virtual ::corvanta::MergeBuilder MergeBuilder(std::vector<CorvantaSdkVideoFile> input,
                                                  CorvantaSdkVideoFileDescriptor output) = 0;
    /// Joins like videos by stream copy.
    virtual ::corvanta::ConcatBuilder ConcatBuilder(std::vector<CorvantaSdkVideoFile> input,
                                                    CorvantaSdkVideoFileDescriptor output) = 0;
    /// Re-encodes one video.
    virtual ::corvanta::EncodingBuilder EncodingBuilder(CorvantaSdkVideoFile input,
                                                        CorvantaSdkVideoFileDescriptor output) = 0;

    /// The stored requests of one status, in the store's own order.
    virtual std::vector<std::shared_ptr<CorvantaSdkVideoRequest>>
    getRequests(CorvantaSdkVideoRequest::Status withStatus) = 0;

    /// Removes a stored request; its files stay where they are. An unknown id is no error: the request is not
    /// stored. Throws `operationStillsInProgress` for one that is `processing`, and leaves it, or the store's
    /// own error.
    virtual void deleteRequest(UUID id) = 0;

    /// The stored requests of one status, or all of them, now and after each change. An empty list is not
    /// given at the start. Values come on the thread of whoever changes the store, during the change: return
    /// quickly, and don't throw, which ends the process. Those of other processes come soon after them, on a
    /// thread of the module. Ending a subscription waits for its running callback: don't end it under a lock
    /// that the callback takes. Take a new stream for each subscriber.
    virtual Stream<std::vector<std::shared_ptr<CorvantaSdkVideoRequest>>>
    streamRequests(std::optional<CorvantaSdkVideoRequest::Status> withStatus = std::nullopt) = 0;

    /// One stored request, now and after each update, under the same rules. Throws
    /// `CoreDataCorvantaStoreError`, `uploadNotFound`, for an unknown id.
    virtual Stream<std::shared_ptr<CorvantaSdkVideoRequest>> streamRequest(UUID withId) = 0;

    /// How far the run of a request has come: now, if it runs or is complete, and whenever more is known. A
    /// fraction of 1 comes last, when the result is there and before the run's task ends; a run that fails or
    /// is cancelled ends without it, and one that begins anew begins at 0. Of a run in another process the
    /// end alone is told. Values come on the thread of whoever knows, mostly one of the module's, one at a
    /// time for one request; else the rules are those of `streamRequest`, also for an unknown id.
    virtual Stream<CorvantaSdkVideoProgress> streamProgress(UUID withId) = 0;
};

} // namespace corvanta
