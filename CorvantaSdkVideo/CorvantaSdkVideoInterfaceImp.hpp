#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoInterface.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>
#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGenerator.hpp>

#include <memory>

namespace corvanta {

/// Delegates to the module's shared objects, each built once at its first use.
class CorvantaSdkVideoInterfaceImp : public CorvantaSdkVideoInterface {
  public:
    CorvantaSdkVideoInterfaceImp();

    Task<std::vector<CorvantaSdkVideoInformation>>
    getVideosInformation(std::vector<CorvantaSdkVideoFile> input) override;

    Task<CorvantaSdkVideoThumbnailResult>
    generateThumbnail(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output, double position,
                      std::optional<std::int64_t> width, std::optional<std::int64_t> height) override;

    static VideosInformationGenerator& videosInformationGenerator();

    /// A new one at each call.
    static std::unique_ptr<CorvantaSdkVideoThumbnailGenerator> thumbnailGenerator();
};

} // namespace corvanta
