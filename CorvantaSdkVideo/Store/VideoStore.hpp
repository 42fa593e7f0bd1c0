#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoRequestStatus.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/UpdateRequestData.hpp>
#include <platform/Stream.hpp>
#include <platform/UUID.hpp>

#include <functional>
#include <optional>
#include <vector>

namespace corvanta {

/// Where requests are kept. All operations are synchronous and may be called from any thread; a call returns
/// when its commit is done. Any update may set any status: the rules are the engines'.
///
/// Streams. A value is delivered in the middle of the commit that caused it, on the writer's thread, before
/// the writer's call returns; the first value is delivered on the subscriber's thread, before `subscribe`
/// returns. An observer may call the store. It must be quick, since it delays the writer, must not wait for
/// another thread that uses the store, and must not throw. Once a subscription has been cancelled, its
/// observer is not running on another thread and will not be called again. A store that hears of other
/// processes delivers what they have committed as well, soon after it, on a thread of its own: a list that
/// differs from the one before, and a row that reads otherwise than before.
class VideoStore {
  public:
    virtual ~VideoStore() = default;

    /// Adds a row. The record's `error`, `processId` and `output` are not stored, and an input's stored index
    /// is its position in `inputFiles`. An id that is there already is not refused. Logs `insertRequest`.
    virtual void insert(const LocalVideoRequest& request) = 0;

    /// Applies the fields, sets `updatedAt` to the current time and commits. Does nothing for an unknown id.
    /// Logs `updateRequest`.
    virtual void updateRequest(const UUID& withId, const UpdateRequestData& data) = 0;

    /// Removes the row and its input files. Does nothing for an unknown id.
    virtual void deleteRequest(const UUID& withId) = 0;

    /// Nothing when no row has this id, or when the row's status or type is unknown. Logs `getRequestById`.
    virtual std::optional<LocalVideoRequest> getRequest(const UUID& withId) = 0;

    /// In the storage's own order, without the rows whose type is unknown.
    virtual std::vector<LocalVideoRequest> getRequests(LocalVideoRequest::Status withStatus) = 0;

    /// Whether the request is `processing` in another living process. A store for one process says no.
    virtual bool isRunElsewhere(const UUID&) { return false; }

    /// Calls back, once at least, when another process has made the request `cancelled`, until the
    /// subscription ends, in the manner of a stream. A store for one process never does.
    virtual Subscription observeCancelElsewhere(const UUID&, std::function<void()>) { return {}; }

    /// Makes every `processing` row `cancelled`, but for those that another living process runs, in one
    /// commit, leaving `updatedAt`. A failure is dropped.
    virtual void resetPendingRequests() noexcept = 0;

    /// The request at subscription, and again after each commit that updated it, equal or not. Silent after
    /// its deletion. Throws `CoreDataCorvantaStore::Error` `uploadNotFound` when no row has this id.
    virtual Stream<LocalVideoRequest> streamVideo(const UUID& with) = 0;

    /// All requests: the list as it was at this call, at once on subscribing and only if it wasn't empty, and
    /// then each list that differs from the one before. The memory of the list before belongs to the stream
    /// object, so a stream object is meant for one subscriber.
    virtual Stream<std::vector<LocalVideoRequest>> streamVideos() = 0;

    /// The same for the requests of one status; an empty list is delivered when the last one leaves.
    virtual Stream<std::vector<LocalVideoRequest>> streamVideos(CorvantaSdkVideoRequestStatus withStatus) = 0;
};

} // namespace corvanta
