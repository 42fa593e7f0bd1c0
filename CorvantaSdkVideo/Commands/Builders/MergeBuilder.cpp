#include <CorvantaSdkVideo/Commands/Builders/MergeBuilder.hpp>

#include <CorvantaSdkVideo/Commands/Builders/RequestSaving.hpp>
#include <CorvantaSdkVideo/Shared/FileURLs.hpp>

#include <utility>

namespace corvanta {

MergeBuilder::MergeBuilder(std::vector<CorvantaSdkVideoFile> videos_, CorvantaSdkVideoFileDescriptor output_,
                           std::shared_ptr<CorvantaSdkVideoRequestEngine> engine_,
                           std::shared_ptr<VideoStore> store_)
    : id(makeUUID()), videos(std::move(videos_)), output(std::move(output_)), engine(std::move(engine_)),
      store(std::move(store_)) {}

std::shared_ptr<CorvantaSdkVideoRequest> MergeBuilder::build() const {
    const VideoMergeData data{.videos = urls(videos),
                              .width = width,
                              .height = height,
                              .framesRate = framesRate,
                              .videoTracks = videoTracks,
                              .audioTracks = audioTracks,
                              .encoding = encoding};
    auto request = newRequest(id, output, data, engine);
    const StoredOperation operation{.type = LocalVideoRequest::OperationType::merge,
                                    .fileExtension = "mp4",
                                    .inputFiles = data.videos,
                                    .rawData = jsonRepresentation(data.serializable()),
                                    .placeholder = false};
    saveRequest(*request, operation, *store);
    return request;
}

} // namespace corvanta
