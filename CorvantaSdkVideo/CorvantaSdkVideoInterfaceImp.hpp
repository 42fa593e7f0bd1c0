#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequestBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Encoding/CorvantaSdkVideoVideoEncoderEngine.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoInterface.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>
#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGenerator.hpp>

#include <memory>

namespace corvanta {

/// Delegates to the module's shared objects, each built once at its first use.
class CorvantaSdkVideoInterfaceImp : public CorvantaSdkVideoInterface {
  public:
    CorvantaSdkVideoInterfaceImp();

    std::shared_ptr<CorvantaSdkVideoNoiseCancellationEngine> engine() override;

    Task<std::vector<CorvantaSdkVideoInformation>>
    getVideosInformation(std::vector<CorvantaSdkVideoFile> input) override;

    Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, double position,
                      std::optional<std::int64_t> width, std::optional<std::int64_t> height) override;
    Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, double position,
                      std::optional<std::int64_t> width, std::optional<std::int64_t> height,
                      CorvantaSdkVideoProgressCallback onProgress) override;

    Task<CorvantaSdkVideoThumbnailResult>
    contactSheet(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, std::int64_t columns,
                 std::int64_t rows, std::int64_t width, CorvantaSdkVideoProgressCallback onProgress) override;

    Task<CorvantaSdkVideoCutInspection> cutInspection(CorvantaSdkVideoFile file, double start,
                                                      double end) override;
    Task<bool> canConcat(std::vector<CorvantaSdkVideoFile> input) override;
    Task<std::optional<CorvantaSdkVideoError>>
    obstacleToConcat(std::vector<CorvantaSdkVideoFile> input) override;

    Task<CorvantaSdkVideoJoinInspection> joinInspection(std::vector<CorvantaSdkVideoFile> input,
                                                        CorvantaSdkVideoJoinOptions options) override;

    ::corvanta::JoinBuilder JoinBuilder(std::vector<CorvantaSdkVideoFile> input,
                                        CorvantaSdkVideoFileDescriptor output) override;
    ::corvanta::MergeBuilder MergeBuilder(std::vector<CorvantaSdkVideoFile> input,
                                          CorvantaSdkVideoFileDescriptor output) override;
    ::corvanta::ConcatBuilder ConcatBuilder(std::vector<CorvantaSdkVideoFile> input,
                                            CorvantaSdkVideoFileDescriptor output) override;
    ::corvanta::EncodingBuilder EncodingBuilder(CorvantaSdkVideoFile input,
                                                CorvantaSdkVideoFileDescriptor output) override;

    std::vector<std::shared_ptr<CorvantaSdkVideoRequest>>
    getRequests(CorvantaSdkVideoRequest::Status withStatus) override;
    void deleteRequest(UUID id) override;
    Stream<std::vector<std::shared_ptr<CorvantaSdkVideoRequest>>>
    streamRequests(std::optional<CorvantaSdkVideoRequest::Status> withStatus) override;
    Stream<std::shared_ptr<CorvantaSdkVideoRequest>> streamRequest(UUID withId) override;
    Stream<CorvantaSdkVideoProgress> streamProgress(UUID withId) override;

    static VideosInformationGenerator& videosInformationGenerator();
    static URL storeURL();
    /// A store that can't be opened stops the process.
    static std::shared_ptr<VideoStore> coreDataStore();
    static ConcatInputValidator& concatInputValidator();
    static std::shared_ptr<const JoinInspector> joinInspector();
    static std::shared_ptr<CorvantaSdkVideoConcatEngine> concatEngine();
    static std::shared_ptr<CorvantaSdkVideoMergeEngine> mergeEngine();
    static std::shared_ptr<CorvantaSdkVideoVideoEncoderEngine> encoderEngine();
    static CorvantaSdkVideoRequestBuilder& requestBuilder();

    /// A new one at each call.
    static std::unique_ptr<CorvantaSdkVideoThumbnailGenerator> thumbnailGenerator();
};

} // namespace corvanta
