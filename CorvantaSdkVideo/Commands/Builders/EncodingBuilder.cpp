#include <CorvantaSdkVideo/Commands/Builders/EncodingBuilder.hpp>

#include <CorvantaSdkVideo/Commands/Builders/RequestSaving.hpp>

#include <utility>

namespace corvanta {

EncodingBuilder::EncodingBuilder(CorvantaSdkVideoFile video_, CorvantaSdkVideoFileDescriptor output_,
                                 std::shared_ptr<CorvantaSdkVideoRequestEngine> engine_,
                                 std::shared_ptr<VideoStore> store_)
    : id(makeUUID()), video(std::move(video_)), output(std::move(output_)), engine(std::move(engine_)),
      store(std::move(store_)) {}

std::shared_ptr<CorvantaSdkVideoRequest> EncodingBuilder::build() const {
    const VideoEncodingData data{.inputFileURL = video.url(),
                                 .width = width,
                                 .height = height,
                                 .videoTracks = videoTracks,
                                 .audioTracks = audioTracks,
                                 .framesRate = framesRate,
                                 .encoding = encoding};
    auto request = newRequest(id, output, data, engine);
    const StoredOperation operation{.type = LocalVideoRequest::OperationType::encode,
                                    .fileExtension = "mp4",
                                    .inputFiles = {data.inputFileURL},
                                    .rawData = jsonRepresentation(data.serializable()),
                                    .placeholder = true};
    saveRequest(*request, operation, *store);
    return request;
}

} // namespace corvanta
