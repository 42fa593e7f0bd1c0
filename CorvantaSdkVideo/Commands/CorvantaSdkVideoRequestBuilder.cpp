#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequestBuilder.hpp>

#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>

#include <utility>

namespace corvanta {

namespace {

using RequestPointer = CorvantaSdkVideoRequestBuilder::RequestPointer;

struct Engines {
    std::shared_ptr<CorvantaSdkVideoRequestEngine> merge;
    std::shared_ptr<CorvantaSdkVideoRequestEngine> concat;
    std::shared_ptr<CorvantaSdkVideoRequestEngine> encoding;
};

LocalVideoRequest::Status stored(CorvantaSdkVideoRequest::Status status) {
    using Public = CorvantaSdkVideoRequest::Status;
    using Stored = LocalVideoRequest::Status;
    switch (status) {
    case Public::processing:
        return Stored::processing;
    case Public::error:
        return Stored::error;
    case Public::cancelled:
        return Stored::cancelled;
    case Public::complete:
        return Stored::completed;
    case Public::idle:
        return Stored::idle;
    }
    fatalError("A request status outside its enumeration");
}

CorvantaSdkVideoRequest::Status published(LocalVideoRequest::Status status) {
    using Public = CorvantaSdkVideoRequest::Status;
    using Stored = LocalVideoRequest::Status;
    switch (status) {
    case Stored::processing:
        return Public::processing;
    case Stored::error:
        return Public::error;
    case Stored::cancelled:
        return Public::cancelled;
    case Stored::completed:
        return Public::complete;
    case Stored::idle:
        return Public::idle;
    }
    fatalError("A stored status outside its enumeration");
}

std::vector<URL> inputPaths(const LocalVideoRequest& localRequest) {
    std::vector<URL> paths;
    paths.reserve(localRequest.inputFiles.size());
    for (const LocalVideoRequestFile& file : localRequest.inputFiles) {
        paths.push_back(file.path);
    }
    return paths;
}

// A row whose parameters don't decode gives a request without operation data, listed like any other.
RequestPointer map(const LocalVideoRequest& localRequest, const Engines& engines) {
    using Type = CorvantaSdkVideoRequest::Type;
    Type type = Type::concat;
    std::shared_ptr<CorvantaSdkVideoRequestEngine> engine = engines.concat;
    std::optional<VideoEncodingData> encoding;
    std::optional<VideoMergeData> merge;
    std::optional<VideoConcatData> concat;
    switch (localRequest.type) {
    case LocalVideoRequest::OperationType::concat:
        concat = VideoConcatData::fromStored(inputPaths(localRequest), localRequest.rawData);
        break;
    case LocalVideoRequest::OperationType::merge:
        type = Type::merge;
        engine = engines.merge;
        merge = VideoMergeData::fromStored(inputPaths(localRequest), localRequest.rawData);
        break;
    case LocalVideoRequest::OperationType::encode:
        type = Type::encode;
        engine = engines.encoding;
        if (!localRequest.inputFiles.empty()) {
            encoding =
                VideoEncodingData::fromStored(localRequest.inputFiles.front().path, localRequest.rawData);
        }
        break;
    }
    return std::make_shared<CorvantaSdkVideoRequest>(
        localRequest.id, type, published(localRequest.status), localRequest.output, localRequest.createdAt,
        localRequest.updatedAt, std::move(encoding), std::move(merge), std::move(concat), localRequest.error,
        localRequest.outputPath, std::move(engine));
}

std::vector<RequestPointer> mapAll(const std::vector<LocalVideoRequest>& localRequests,
                                   const Engines& engines) {
    std::vector<RequestPointer> requests;
    requests.reserve(localRequests.size());
    for (const LocalVideoRequest& localRequest : localRequests) {
        requests.push_back(map(localRequest, engines));
    }
    return requests;
}

} // namespace

CorvantaSdkVideoRequestBuilder::CorvantaSdkVideoRequestBuilder(
    std::shared_ptr<VideoStore> store, std::shared_ptr<CorvantaSdkVideoMergeEngine> mergeEngine,
    std::shared_ptr<CorvantaSdkVideoConcatEngine> concatEngine,
    std::shared_ptr<CorvantaSdkVideoRequestEngine> encodingEngine,
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager)
    : store_(std::move(store)), mergeEngine_(std::move(mergeEngine)), concatEngine_(std::move(concatEngine)),
      encodingEngine_(std::move(encodingEngine)), credentialsManager_(std::move(credentialsManager)) {}

std::vector<RequestPointer>
CorvantaSdkVideoRequestBuilder::getRequestsByStatus(CorvantaSdkVideoRequest::Status status) const {
    validateAuthentication();
    return mapAll(store_->getRequests(stored(status)), {mergeEngine_, concatEngine_, encodingEngine_});
}

void CorvantaSdkVideoRequestBuilder::deleteRequest(const UUID& id) const {
    validateAuthentication();
    const auto row = store_->getRequest(id);
    if (row && row->status == LocalVideoRequest::Status::processing) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::operationStillsInProgress,
                                    "the request is being processed");
    }
    store_->deleteRequest(id);
}

Stream<std::vector<RequestPointer>> CorvantaSdkVideoRequestBuilder::streamRequests(
    std::optional<CorvantaSdkVideoRequest::Status> withStatus) const {
    const auto stream = withStatus ? store_->streamVideos(*withStatus) : store_->streamVideos();
    return stream.map(
        [engines = Engines{mergeEngine_, concatEngine_, encodingEngine_}](
            const std::vector<LocalVideoRequest>& localRequests) { return mapAll(localRequests, engines); });
}

Stream<RequestPointer> CorvantaSdkVideoRequestBuilder::streamVideoRequest(const UUID& withId) const {
    return store_->streamVideo(withId).map(
        [engines = Engines{mergeEngine_, concatEngine_, encodingEngine_}](
            const LocalVideoRequest& localRequest) { return map(localRequest, engines); });
}

void CorvantaSdkVideoRequestBuilder::validateAuthentication() const { requireLogin(*credentialsManager_); }

} // namespace corvanta
