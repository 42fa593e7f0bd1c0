#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseCancellationEngine.hpp>

#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CleaningProgress.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseProcessor.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/ModelLoading.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/SoundCleaning.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>
#include <platform/Aside.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Bundle.hpp>
#include <platform/Cancellation.hpp>
#include <platform/ConsoleSink.hpp>
#include <platform/Directories.hpp>
#include <platform/UUID.hpp>

#include <talvo_audio_sdk.h>

#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <chrono>
#include <cmath>
#include <functional>
#include <stop_token>
#include <string>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

// Frames that are cleaned in one go, before other work on the caller's executor has its turn: a second.
constexpr int framesPerTurn = 100;

// As long as it takes, since a long file's sound is all over it; a stop ends it.
constexpr auto patience = std::chrono::hours(24);

// What cleaning needs beside the extracted sound, while that is extracted. A file that can't be read in
// process has its sound cleaned as it was extracted, from its start on.
Task<> prepareCleaning(URL video, std::shared_ptr<SoundTimes> times, std::shared_ptr<ModelLoading> model) {
    std::function<void(std::stop_token)> work = [times, model, path = video.path()](std::stop_token stop) {
        if (model) {
            model->load();
        }
        const OpenMedia::Options options{.patience = patience, .stop = std::move(stop)};
        *times = soundTimes(path, options);
    };
    try {
        co_await runAside(std::move(work));
    } catch (const std::exception&) {
        // What else runs tells of a cancellation.
    }
}

void requireValid(const CorvantaSdkVideoNoiseCancellationOptions& options) {
    const double strength = options.strength.value_or(1);
    if (!(strength >= 0 && strength <= 1)) {
        throw Error(Error::configurationError, "a strength must be from 0 to 1");
    }
}

// 0 if that isn't known, or the file can't be read: the extraction tells what is wrong with it.
double statedSeconds(const URL& video) {
    try {
        const double seconds = AssetReader(video).statedDuration().value_or(0);
        return isPossibleDuration(seconds) ? seconds : 0;
    } catch (const PlatformError&) {
        return 0;
    }
}

// What the run writes at least: the sound twice, in samples of 16 bits, and a picture that is copied.
void requireSpace(const URL& video, const URL& output, double seconds, bool copiesPicture) {
    constexpr double bytesPerSecond = 2 * 16000.0;
    // A head's figures are rounded.
    constexpr double share = 0.9;
    double picture = 0;
    try {
        const AssetReader reader(video);
        seconds = reader.statedSoundDuration().value_or(seconds);
        picture = copiesPicture ? reader.statedPictureBytes().value_or(0) * share : 0;
    } catch (const PlatformError&) {
        // The extraction tells what is wrong with it.
    }
    if (!isPossibleDuration(seconds) || !isPossibleDuration(picture / bytesPerSecond)) {
        return;
    }
    const std::int64_t sound = std::llround(seconds * bytesPerSecond * share);
    const std::vector<NeededSpace> needed{{Directories::documents().path() + "/", sound},
                                          {Directories::temporaryFile("caf").path(), sound},
                                          {output.path(), std::llround(picture)}};
    requireFreeSpace(needed, Error::unableToProcessInput);
}

URL newSoundFile() { return CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "wav"); }

} // namespace

CorvantaNoiseCancellationEngine::CorvantaNoiseCancellationEngine(
    CorvantaFileProcessor fileProcessor, std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
    FFMPEGCommandGenerator commandGenerator, std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
    CorvantaSdkVideoFileValidator videoValidator)
    : fileProcessor_(std::move(fileProcessor)), credentialsManager_(std::move(credentialsManager)),
      commandGenerator_(commandGenerator), commandExecutor_(std::move(commandExecutor)),
      videoValidator_(videoValidator) {
    initialize();
}

CorvantaNoiseCancellationEngine::~CorvantaNoiseCancellationEngine() { endSession(); }

Task<CorvantaSdkVideoNoiseCancellationResult>
CorvantaNoiseCancellationEngine::clearNoiseForFile(CorvantaSdkVideoFile input,
                                                   CorvantaSdkVideoFileDescriptor output) {
    return clearNoiseForFile(std::move(input), std::move(output), {});
}

Task<CorvantaSdkVideoNoiseCancellationResult>
CorvantaNoiseCancellationEngine::clearNoiseForFile(CorvantaSdkVideoFile input,
                                                   CorvantaSdkVideoFileDescriptor output,
                                                   CorvantaSdkVideoNoiseCancellationOptions options) {
    return run(shared_from_this(), std::move(input), std::move(output), options);
}

Task<CorvantaSdkVideoNoiseCancellationResult>
CorvantaNoiseCancellationEngine::run(Self self, CorvantaSdkVideoFile file,
                                     CorvantaSdkVideoFileDescriptor location,
                                     CorvantaSdkVideoNoiseCancellationOptions options) {
    const URL& input = file.url();
    const auto output = location.url(file.fileExtension());
    if (!output) {
        throw Error(Error::unableToProcessOutput, "the output location is no URL");
    }
    Logger::addLog(Event::clearNoise, EventMessage::clearNoise(input, *output));
    self->enterProcessing();
    struct Finish {
        std::atomic<State>& state;
        ~Finish() { state = State::finished; }
    } const finish{self->state_};

    // Also when the host drops the run in the middle.
    struct ProcessedFiles {
        const CorvantaNoiseCancellationEngine& engine;
        std::vector<URL> urls = {};
        ~ProcessedFiles() { engine.remove(urls); }
    } processedFiles{*self};
    try {
        co_await self->clean(input, *output, options, processedFiles.urls);
    } catch (const std::exception& error) {
        Logger::logError(Event::clearNoise, EventMessage::clearNoiseFailed(input, error));
        self->endSession();
        throw;
    }
    co_return CorvantaSdkVideoNoiseCancellationResult{*output};
}

void CorvantaNoiseCancellationEngine::enterProcessing() {
    State before = state_;
    do {
        if (before == State::initial || before == State::unknown) {
            throw Error(Error::configurationError, "the noise library could not be started");
        }
        if (before == State::processing) {
            throw Error(Error::processingInProgress, "this engine cleans a file already");
        }
    } while (!state_.compare_exchange_weak(before, State::processing));
}

Task<> CorvantaNoiseCancellationEngine::clean(URL input, URL output,
                                              CorvantaSdkVideoNoiseCancellationOptions options,
                                              std::vector<URL>& processedFiles) {
    using namespace boost::asio::experimental::awaitable_operators;
    requireLogin(*credentialsManager_);
    requireValid(options);
    videoValidator_.validateFileAt(input);
    const double seconds = statedSeconds(input);
    const bool copiesPicture = CorvantaFileProcessor::copiesPicture(input);
    requireSpace(input, output, seconds, copiesPicture);
    const auto progress = std::make_shared<CleaningProgress>(options.onProgress, seconds);
    const auto times = std::make_shared<SoundTimes>();
    Task<> preparing = prepareCleaning(input, times, ownsLibrary_ ? modelLoading_ : nullptr);
    progress->extracts(copiesPicture);
    // It may be there, and this run be dropped, before the preparation has ended.
    const URL audio = processedFiles.emplace_back(newSoundFile());
    Task<> extraction = extractAudio(input, audio, progress->meter());
    co_await (std::move(extraction) && std::move(preparing));
    const URL cleaned = co_await cleanAudio(audio, times, options, progress);
    processedFiles.push_back(cleaned);
    progress->writes();
    co_await fileProcessor_.mergeVideoWithAudio(input, cleaned, output, progress->meter());
}

Task<URL> CorvantaNoiseCancellationEngine::extractAudioForFile(URL at) {
    const URL audio = newSoundFile();
    co_await extractAudio(std::move(at), audio, nullptr);
    co_return audio;
}

Task<> CorvantaNoiseCancellationEngine::extractAudio(URL at, URL audio,
                                                     std::shared_ptr<ProgressMeter> meter) {
    try {
        CommandPaths paths;
        const URL video = paths.input(at, PathForm::quoted);
        const URL sound = paths.temporary(audio, PathForm::quoted);
        std::string command = commandGenerator_.generateExtractAudioCommandFor(video, sound);
        co_await commandExecutor_->executeMeasured(std::move(command), nullptr, std::move(meter));
    } catch (const std::exception& error) {
        // What a failed extraction has begun to write is of no use to anybody.
        fileProcessor_.removeFile(audio);
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::unableToProcessInput, detailsOf(error));
    }
}

Task<URL> CorvantaNoiseCancellationEngine::cleanAudio(URL audioFileURL, std::shared_ptr<SoundTimes> times,
                                                      CorvantaSdkVideoNoiseCancellationOptions options,
                                                      std::shared_ptr<CleaningProgress> progress) {
    // The instance of an engine that has run is gone, and one that is there is another engine's.
    if (!ownsLibrary_) {
        throw Error(Error::configurationError, "the noise library is another engine's");
    }
    struct Unfinished {
        const CorvantaFileProcessor& files;
        const URL url;
        bool finished = false;
        ~Unfinished() {
            if (!finished) {
                files.removeFile(url);
            }
        }
    } cleaned{fileProcessor_, Directories::temporaryFile("caf")};
    SoundCleaning cleaning(audioFileURL, cleaned.url, *times, options, modelLoading_->isLoaded());
    const auto executor = co_await boost::asio::this_coro::executor;
    progress->cleans(cleaning.seconds());
    while (cleaning.cleanFrames(framesPerTurn)) {
        progress->hasCleaned(cleaning.secondsDone());
        throwIfCancelled(co_await boost::asio::this_coro::cancellation_state);
        co_await boost::asio::post(executor, boost::asio::use_awaitable);
    }
    ownsLibrary_ = false;
    cleaning.end();
    cleaned.finished = true;
    co_return cleaned.url;
}

void CorvantaNoiseCancellationEngine::initialize() {
    talvoAudioSetPrint([](const char* line, void*) { printToConsole(line); }, nullptr);
    withWideChars(Bundle::resourceDirectory(),
                  [this](const wchar_t* path) { ownsLibrary_ = talvoAudioGlobalInit(path) == 0; });
    modelLoading_ = std::make_shared<ModelLoading>();
    state_ = ownsLibrary_ ? State::initialized : State::unknown;
}

// Only what this engine has made: by the time of its end the instance may be another engine's.
void CorvantaNoiseCancellationEngine::endSession() {
    if (std::exchange(ownsLibrary_, false)) {
        modelLoading_->stop();
        talvoAudioGlobalDestroy();
    }
}

void CorvantaNoiseCancellationEngine::remove(const std::vector<URL>& processedFiles) const {
    for (const URL& file : processedFiles) {
        fileProcessor_.removeFile(file);
    }
}

} // namespace corvanta
