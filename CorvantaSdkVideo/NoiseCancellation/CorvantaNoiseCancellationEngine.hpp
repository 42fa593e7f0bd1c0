#pragma once

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaFileProcessor.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaSdkVideoNoiseCancellationEngine.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandGenerator.hpp>

#include <platform/SoundTimes.hpp>

#include <atomic>
#include <memory>
#include <vector>

namespace corvanta {

class CleaningProgress;
class ModelLoading;

/// Extracts the sound, cleans it frame by frame, and puts it back. Holds the audio library's one instance
/// from its construction to the end of its run, or to its own end. Made as a shared_ptr.
class CorvantaNoiseCancellationEngine : public CorvantaSdkVideoNoiseCancellationEngine,
                                        public std::enable_shared_from_this<CorvantaNoiseCancellationEngine> {
  public:
    enum class State { finished = 0, initial = 1, initialized = 2, processing = 3, unknown = 4 };

    explicit CorvantaNoiseCancellationEngine(CorvantaFileProcessor fileProcessor = CorvantaFileProcessor(),
                                             std::shared_ptr<CorvantaCredentialsManager> credentialsManager =
                                                 std::make_shared<CorvantaCredentialsManagerImp>(),
                                             FFMPEGCommandGenerator commandGenerator = {},
                                             std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
                                                 std::make_shared<FFMPEGCommandExecutorImplementation>(),
                                             CorvantaSdkVideoFileValidator videoValidator = {});
    CorvantaNoiseCancellationEngine(const CorvantaNoiseCancellationEngine&) = delete;
    CorvantaNoiseCancellationEngine& operator=(const CorvantaNoiseCancellationEngine&) = delete;
    ~CorvantaNoiseCancellationEngine() override;

    State state() const { return state_; }

    Task<CorvantaSdkVideoNoiseCancellationResult>
    clearNoiseForFile(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output) override;
    Task<CorvantaSdkVideoNoiseCancellationResult>
    clearNoiseForFile(CorvantaSdkVideoFile input, CorvantaSdkVideoFileDescriptor output,
                      CorvantaSdkVideoNoiseCancellationOptions options) override;

    /// The sound as a mono "wav" file of 16000 Hz in the documents directory. Throws `unableToProcessInput`.
    Task<URL> extractAudioForFile(URL at);

  private:
    using Self = std::shared_ptr<CorvantaNoiseCancellationEngine>;

    static Task<CorvantaSdkVideoNoiseCancellationResult>
    run(Self self, CorvantaSdkVideoFile file, CorvantaSdkVideoFileDescriptor location,
        CorvantaSdkVideoNoiseCancellationOptions options);
    void enterProcessing();
    Task<> clean(URL input, URL output, CorvantaSdkVideoNoiseCancellationOptions options,
                 std::vector<URL>& processedFiles);
    Task<> extractAudio(URL at, URL audio, std::shared_ptr<ProgressMeter> meter);
    Task<URL> cleanAudio(URL audioFileURL, std::shared_ptr<SoundTimes> times,
                         CorvantaSdkVideoNoiseCancellationOptions options,
                         std::shared_ptr<CleaningProgress> progress);

    void initialize();
    void endSession();
    void remove(const std::vector<URL>& processedFiles) const;

    std::atomic<State> state_ = State::initial;
    bool ownsLibrary_ = false;
    std::shared_ptr<ModelLoading> modelLoading_;
    CorvantaFileProcessor fileProcessor_;
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
    FFMPEGCommandGenerator commandGenerator_;
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    CorvantaSdkVideoFileValidator videoValidator_;
};

} // namespace corvanta
