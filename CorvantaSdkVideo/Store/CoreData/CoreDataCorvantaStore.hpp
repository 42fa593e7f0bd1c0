#pragma once

#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStoreError.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>
#include <platform/PeerWatch.hpp>
#include <platform/URL.hpp>

#include <functional>
#include <memory>
#include <optional>

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
/// Any number of processes, and of stores in one process, may use one file at the same time: each sees what
/// the others have committed, and the running rows of each are left alone by the others. The file has to lie
/// on a file system of the machine itself, since SQLite's log is shared by memory. See `VideoStore` for
/// threads and streams.
class CoreDataCorvantaStore : public VideoStore {
  public:
    using Error = CoreDataCorvantaStoreError;

    /// What observers hear of other processes.
    enum class Others {
        /// Nothing: a commit can be seen by streams of this very store object alone.
        unheard,
        /// Their commits, soon after them, on a thread that the store starts with its first stream. It also
        /// makes the running rows of processes that die meanwhile `cancelled`.
        heard,
    };

    /// Opens the store, making the file, but not its folder, if it isn't there, and bringing one that an
    /// older version made up to date. Logs the reason of a failure and throws
    /// `failedToLoadPersistentContainer`.
    explicit CoreDataCorvantaStore(const URL& storeURL, Others others = Others::unheard);
    CoreDataCorvantaStore(const CoreDataCorvantaStore&) = delete;
    CoreDataCorvantaStore& operator=(const CoreDataCorvantaStore&) = delete;
    /// Streams that are still held keep the file open. Not to be called from within an observer.
    ~CoreDataCorvantaStore() override;

    /// Stops the process for 32,768 input files or more: their numbers don't fit the column.
    void insert(const LocalVideoRequest& request) override;
    void updateRequest(const UUID& withId, const UpdateRequestData& data) override;
    void deleteRequest(const UUID& withId) override;
    std::optional<LocalVideoRequest> getRequest(const UUID& withId) override;
    std::vector<LocalVideoRequest> getRequests(LocalVideoRequest::Status withStatus) override;
    bool isRunElsewhere(const UUID& id) override;
    Subscription observeCancelElsewhere(const UUID& id, std::function<void()> onCancel) override;
    void resetPendingRequests() noexcept override;
    Stream<LocalVideoRequest> streamVideo(const UUID& with) override;
    Stream<std::vector<LocalVideoRequest>> streamVideos() override;
    Stream<std::vector<LocalVideoRequest>> streamVideos(CorvantaSdkVideoRequestStatus withStatus) override;

  private:
    void listen();
    void hearOthers() noexcept;

    const Others others_;
    std::shared_ptr<PersistentContainer> container_;
    std::shared_ptr<ManagedObjectContext> context_;
    // Made within the scope; its thread uses all of the above.
    std::optional<PeerWatch> watch_;
};

} // namespace corvanta
