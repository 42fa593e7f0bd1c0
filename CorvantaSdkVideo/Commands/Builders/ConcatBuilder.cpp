#include <CorvantaSdkVideo/Commands/Builders/ConcatBuilder.hpp>

#include <CorvantaSdkVideo/Commands/Builders/RequestSaving.hpp>
#include <CorvantaSdkVideo/Shared/FileURLs.hpp>

#include <utility>

namespace corvanta {

ConcatBuilder::ConcatBuilder(std::vector<CorvantaSdkVideoFile> videos_,
                             CorvantaSdkVideoFileDescriptor output_,
                             std::shared_ptr<CorvantaSdkVideoRequestEngine> engine_,
                             std::shared_ptr<VideoStore> store_)
    : id(makeUUID()), videos(std::move(videos_)), output(std::move(output_)), engine(std::move(engine_)),
      store(std::move(store_)) {}

std::shared_ptr<CorvantaSdkVideoRequest> ConcatBuilder::build() const {
    const VideoConcatData data{urls(videos)};
    auto request = newRequest(id, output, data, engine);
    // Without a video there is no extension, and so no place to store.
    if (!videos.empty()) {
        const StoredOperation operation{.type = LocalVideoRequest::OperationType::concat,
                                        .fileExtension = videos.front().fileExtension(),
                                        .inputFiles = data.videos,
                                        .rawData = std::nullopt,
                                        .placeholder = true};
        saveRequest(*request, operation, *store);
    }
    return request;
}

} // namespace corvanta
