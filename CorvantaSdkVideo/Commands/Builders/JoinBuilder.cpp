#include <CorvantaSdkVideo/Commands/Builders/JoinBuilder.hpp>

#include <CorvantaSdkVideo/Commands/Builders/RequestSaving.hpp>
#include <CorvantaSdkVideo/Commands/Join/JoinInspector.hpp>
#include <CorvantaSdkVideo/Shared/FileURLs.hpp>

#include <utility>

namespace corvanta {

namespace {

using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;

// Hold what they work on: a builder may be gone while they run.
Task<CorvantaSdkVideoJoinInspection> inspected(std::shared_ptr<const JoinInspector> inspector,
                                               std::vector<URL> videos, CorvantaSdkVideoJoinOptions options) {
    co_return co_await inspector->inspect(std::move(videos), std::move(options));
}

Task<RequestPointer> built(JoinBuilder builder) {
    const CorvantaSdkVideoJoinInspection inspection = co_await builder.inspect();
    co_return builder.build(inspection);
}

std::optional<double> pixels(std::optional<std::int64_t> side) {
    return side ? std::optional(static_cast<double>(*side)) : std::nullopt;
}

} // namespace

JoinBuilder::JoinBuilder(std::vector<CorvantaSdkVideoFile> videos_, CorvantaSdkVideoFileDescriptor output_,
                         std::shared_ptr<const JoinInspector> inspector_,
                         std::shared_ptr<CorvantaSdkVideoRequestEngine> concatEngine_,
                         std::shared_ptr<CorvantaSdkVideoRequestEngine> mergeEngine_,
                         std::shared_ptr<VideoStore> store_)
    : id(makeUUID()), videos(std::move(videos_)), output(std::move(output_)),
      inspector(std::move(inspector_)), concatEngine(std::move(concatEngine_)),
      mergeEngine(std::move(mergeEngine_)), store(std::move(store_)) {}

Task<CorvantaSdkVideoJoinInspection> JoinBuilder::inspect() const {
    return inspected(inspector, urls(videos), options);
}

RequestPointer JoinBuilder::build(const CorvantaSdkVideoJoinInspection& inspection) const {
    const bool copies = inspection.way == CorvantaSdkVideoJoinWay::copied;
    OperationData data;
    std::optional<std::string> rawData;
    if (copies) {
        const VideoConcatData concat{urls(videos), inspection.fileExtension};
        rawData = jsonRepresentation(concat.serializable());
        data = concat;
    } else {
        const VideoMergeData merge{.videos = urls(videos),
                                   .width = pixels(inspection.width),
                                   .height = pixels(inspection.height),
                                   .framesRate = inspection.framesRate,
                                   .videoTracks = {},
                                   .audioTracks = {},
                                   .encoding = inspection.encoding,
                                   .isJoin = true};
        rawData = jsonRepresentation(merge.serializable());
        data = merge;
    }
    auto request = newRequest(id, output, data, copies ? concatEngine : mergeEngine);
    if (!videos.empty()) {
        using Stored = LocalVideoRequest::OperationType;
        const StoredOperation operation{.type = copies ? Stored::concat : Stored::merge,
                                        .fileExtension = inspection.fileExtension,
                                        .inputFiles = urls(videos),
                                        .rawData = std::move(rawData),
                                        .placeholder = copies};
        saveRequest(*request, operation, *store);
    }
    return request;
}

Task<RequestPointer> JoinBuilder::build() const { return built(*this); }

} // namespace corvanta
