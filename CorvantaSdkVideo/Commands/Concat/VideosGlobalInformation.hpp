#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <string>
#include <unordered_set>
#include <vector>

namespace corvanta {

/// A summary of several videos.
class VideosGlobalInformation {
  public:
    explicit VideosGlobalInformation(const std::vector<CorvantaSdkVideoInformation>& videosMetadata);

    /// Displayed sizes, by orientation.
    const std::unordered_set<VideoSize>& portraitSizes() const { return portraitSizes_; }
    const std::unordered_set<VideoSize>& landscapeSizes() const { return landscapeSizes_; }

    /// Both are true of no videos at all.
    bool allVideosHaveAudio() const { return allVideosHaveAudio_; }
    bool noVideoHasAudio() const { return noVideoHasAudio_; }

    /// The largest width and the largest height, which may come from different videos.
    VideoSize targetSize() const { return targetSize_; }

    /// Of each video's first track of the kind; empty or 0 for a silent one.
    const std::unordered_set<std::string>& videoCodecs() const { return videoCodecs_; }
    const std::unordered_set<std::string>& audioCodecs() const { return audioCodecs_; }
    const std::unordered_set<double>& audioSampleRates() const { return audioSampleRates_; }
    const std::unordered_set<CorvantaSdkVideoFrameRate>& framesPerRate() const { return framesPerRate_; }

  private:
    std::unordered_set<VideoSize> portraitSizes_;
    std::unordered_set<VideoSize> landscapeSizes_;
    bool allVideosHaveAudio_ = true;
    bool noVideoHasAudio_ = true;
    VideoSize targetSize_;
    std::unordered_set<std::string> videoCodecs_;
    std::unordered_set<std::string> audioCodecs_;
    std::unordered_set<double> audioSampleRates_;
    std::unordered_set<CorvantaSdkVideoFrameRate> framesPerRate_;
};

} // namespace corvanta
