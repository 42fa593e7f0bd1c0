#pragma once

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditor.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandGenerator.hpp>

#include <memory>
#include <vector>

namespace corvanta {

/// Edits with one ffmpeg run each, an exact cut with a few. Keeps no state between calls. Two edits with one
/// output race for the file.
class CorvantaSdkVideoEditorImplementation : public CorvantaSdkVideoEditor {
  public:
    explicit CorvantaSdkVideoEditorImplementation(
        std::shared_ptr<CorvantaCredentialsManager> credentialsManager =
            std::make_shared<CorvantaCredentialsManagerImp>(),
        std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
            std::make_shared<FFMPEGCommandExecutorImplementation>(),
        FFMPEGCommandGenerator commandGenerator = {}, CorvantaSdkVideoFileValidator videoValidator = {});

    Task<CorvantaSdkVideoEditorResult> edit(CorvantaSdkVideoEditorInput video) override;
    Task<URL> getThumbnailForVideo(URL at, double interval, std::optional<std::int64_t> width,
                                   std::optional<std::int64_t> height) override;
    Task<CorvantaSdkVideoCutInspection> inspectCut(URL video, CorvantaSdkVideoTimeRange range) override;
    Task<std::optional<URL>> getWaveformForVideo(URL at, std::int64_t width, std::int64_t height) override;

  private:
    using Meter = std::shared_ptr<ProgressMeter>;

    Task<std::vector<CorvantaSdkVideoCutWay>>
    write(CorvantaSdkVideoEditorInput video, std::vector<CorvantaSdkVideoTimeRange> ranges, Meter meter);
    Task<> copy(CorvantaSdkVideoEditorInput video, CorvantaSdkVideoTimeRange range, Meter meter);
    static Task<> validateTrimRanges(URL url, std::vector<CorvantaSdkVideoTimeRange> ranges);
    static Task<> validateThumbnailPosition(URL url, double interval);

    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    FFMPEGCommandGenerator commandGenerator_;
    CorvantaSdkVideoFileValidator videoValidator_;
};

} // namespace corvanta
