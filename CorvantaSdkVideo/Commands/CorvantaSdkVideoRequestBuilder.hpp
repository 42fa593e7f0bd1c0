#pragma once

#include <CorvantaSdkVideo/Commands/Concat/CorvantaSdkVideoConcatEngine.hpp>
#include <CorvantaSdkVideo/Commands/Merge/CorvantaSdkVideoMergeEngine.hpp>
#include <platform/Stream.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// The directory of requests: turns stored rows back into live request objects. Every call and every emission
/// gives new objects, each able to run once. Safe from any thread; streams emit on the writer's thread.
class CorvantaSdkVideoRequestBuilder {
  public:
    using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;

    CorvantaSdkVideoRequestBuilder(std::shared_ptr<VideoStore> store,
                                   std::shared_ptr<CorvantaSdkVideoMergeEngine> mergeEngine,
                                   std::shared_ptr<CorvantaSdkVideoConcatEngine> concatEngine,
                                   std::shared_ptr<CorvantaSdkVideoRequestEngine> encodingEngine,
                                   std::shared_ptr<CorvantaCredentialsManager> credentialsManager =
                                       std::make_shared<CorvantaCredentialsManagerImp>());

    /// In the store's own order. Throws `userNotAuthenticated`, or the store's error.
    std::vector<RequestPointer> getRequestsByStatus(CorvantaSdkVideoRequest::Status status) const;

    /// Does nothing for an unknown id. Throws `userNotAuthenticated`, `operationStillsInProgress`, or the
    /// store's error.
    void deleteRequest(const UUID& id) const;

    /// Requests of one status, or all of them. Asks for no login.
    Stream<std::vector<RequestPointer>>
    streamRequests(std::optional<CorvantaSdkVideoRequest::Status> withStatus) const;

    /// Throws the store's error for an unknown id. Asks for no login.
    Stream<RequestPointer> streamVideoRequest(const UUID& withId) const;

  private:
    void validateAuthentication() const;

    std::shared_ptr<VideoStore> store_;
    std::shared_ptr<CorvantaSdkVideoMergeEngine> mergeEngine_;
    std::shared_ptr<CorvantaSdkVideoConcatEngine> concatEngine_;
    std::shared_ptr<CorvantaSdkVideoRequestEngine> encodingEngine_;
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
};

} // namespace corvanta
