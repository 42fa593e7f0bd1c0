#include <CorvantaSdkVideo/Commands/Concat/VideosGlobalInformation.hpp>

#include <algorithm>

namespace corvanta {

VideosGlobalInformation::VideosGlobalInformation(
    const std::vector<CorvantaSdkVideoInformation>& videosMetadata) {
    for (const CorvantaSdkVideoInformation& video : videosMetadata) {
        targetSize_.width = std::max(targetSize_.width, video.videoSize.width);
        targetSize_.height = std::max(targetSize_.height, video.videoSize.height);
        (video.orientation == Orientation::portrait ? portraitSizes_ : landscapeSizes_)
            .insert(video.videoSize);
        videoCodecs_.insert(video.videoCodec());
        framesPerRate_.insert(video.frameRate());
        audioCodecs_.insert(video.audioCodec());
        audioSampleRates_.insert(video.audioSampleRates());
        allVideosHaveAudio_ = allVideosHaveAudio_ && video.hasAudio();
        noVideoHasAudio_ = noVideoHasAudio_ && !video.hasAudio();
    }
}

} // namespace corvanta
