#pragma once

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStoreError.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>
#include <platform/URL.hpp>

#include <memory>

namespace corvanta {

class ManagedObjectContext;
class PersistentContainer;

/// The persistent store: one SQLite file, safe against power loss, one serial working context. A call that
/// returned is on disk.
///
/// A commit that fails throws SQLiteCpp's own `SQLite::Exception`. Nothing is rolled back: the change stays
/// pending, is seen by later reads, and goes to disk with the next commit that succeeds. Reads never throw:
/// a failed one counts as no rows.
///
/// The paths of the output and of the inputs are guarded by file bookmarks: a file that was moved or renamed
/// reads with its present path, as far as it can be found; otherwise the stored path comes back. A path that
/// has not changed reads back as the URL that was inserted.
///
/// Two processes must not use one file at the same time. See `VideoStore` for threads and streams.
class CoreDataCorvantaStore : public VideoStore {
  public:
    using Error = CoreDataCorvantaStoreError;

    /// Opens the store, making the file, but not its folder, if it isn't there. Throws
    /// `failedToLoadPersistentContainer`.
    explicit CoreDataCorvantaStore(const URL& storeURL);
    CoreDataCorvantaStore(const CoreDataCorvantaStore&) = delete;
    CoreDataCorvantaStore& operator=(const CoreDataCorvantaStore&) = delete;
    /// Streams that are still held keep the file open.
    ~CoreDataCorvantaStore() override;

    /// Stops the process for 32,768 input files or more: their numbers don't fit the column.
    void insert(const LocalVideoRequest& request) override;
    void updateRequest(const UUID& withId, const UpdateRequestData& data) override;
    void deleteRequest(const UUID& withId) override;
    std::optional<LocalVideoRequest> getRequest(const UUID& withId) override;
    std::vector<LocalVideoRequest> getRequests(LocalVideoRequest::Status withStatus) override;
    void resetPendingRequests() noexcept override;
    Stream<LocalVideoRequest> streamVideo(const UUID& with) override;
    Stream<std::vector<LocalVideoRequest>> streamVideos() override;
    Stream<std::vector<LocalVideoRequest>> streamVideos(CorvantaSdkVideoRequestStatus withStatus) override;

  private:
    std::shared_ptr<PersistentContainer> container_;
    std::shared_ptr<ManagedObjectContext> context_;
};

} // namespace corvanta
