#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseCancellationEngine.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseProcessor.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <platform/AssetReader.hpp>
#include <platform/AudioFile.hpp>
#include <platform/Bundle.hpp>
#include <platform/Cancellation.hpp>
#include <platform/Directories.hpp>
#include <platform/UUID.hpp>

#include <talvo_audio_sdk.h>

#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

constexpr const char* modelFileName = "c6.f.s.ced125.tw";
constexpr unsigned frameDurationMillis = 10;
constexpr int soundFramesPerSecond = 100;

// Frames that are cleaned in one go, before other work on the caller's executor has its turn: about 6 ms.
constexpr int framesPerTurn = 100;

// How long the picture runs before its sound does, in samples: the extracted sound tells nothing of it.
std::int64_t silenceBefore(const URL& video, int sampleRate) {
    try {
        AssetReader asset(video);
        const double seconds = std::clamp(asset.soundStart().value_or(0), 0.0, asset.duration());
        return std::llround(seconds * sampleRate);
    } catch (const PlatformError&) {
        return 0;
    }
}

// One frame of a fixed size at a time; the last one is filled up by what the buffer held before.
class Cleaning {
  public:
    Cleaning(const URL& video, URL audio, URL cleaned)
        : audio_(std::move(audio)), cleaned_(std::move(cleaned)), source_(audio_.path()),
          target_(cleaned_.path(), source_),
          processor_(modelFileName, static_cast<unsigned>(source_.sampleRate()), frameDurationMillis),
          frame_(static_cast<std::size_t>(source_.sampleRate() / soundFramesPerSecond)),
          silence_(silenceBefore(video, source_.sampleRate())) {
        if (frame_ == 0 || source_.channels() != 1) {
            throw Error(Error::unableToProcessFile, audio_.path() + ": no sound of one channel");
        }
        rendered_.samples = std::vector<float>(frame_);
        result_.samples = std::vector<float>(frame_);
        processor_.startSession();
    }

    /// False when the whole sound is cleaned. A failure inside the loop can't be told from a broken disk or a
    /// broken module, and ends the process.
    bool cleanFrames(int count) {
        try {
            writeSilence();
            for (int frame = 0; frame < count && position_ < source_.length(); ++frame) {
                const std::int64_t frames = source_.read(*rendered_.floatChannelData());
                // A sound that ends before its stated length has nothing more to give.
                if (frames == 0) {
                    position_ = source_.length();
                    break;
                }
                position_ += frames;
                processor_.process(rendered_, result_);
                target_.write(*result_.floatChannelData());
            }
        } catch (const std::exception& error) {
            // Nobody else will, and it may be these that fill the disk.
            CorvantaSdkVideoUtils::deleteFileIfExists(audio_);
            CorvantaSdkVideoUtils::deleteFileIfExists(cleaned_);
            fatalError(("The manual rendering failed: " + localizedDescription(error) + ".").c_str());
        }
        return position_ < source_.length();
    }

    void end() { processor_.endSession(); }

  private:
    void writeSilence() {
        const std::vector<float> silence(frame_);
        for (std::int64_t left = std::exchange(silence_, 0); left > 0; left -= std::ssize(silence)) {
            target_.write(std::span(silence).first(std::min(silence.size(), static_cast<std::size_t>(left))));
        }
    }

    URL audio_;
    URL cleaned_;
    AudioFileReader source_;
    AudioFileWriter target_;
    CorvantaNoiseProcessor processor_;
    std::size_t frame_;
    std::int64_t silence_;
    PCMBuffer rendered_;
    PCMBuffer result_;
    std::int64_t position_ = 0;
};

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
    return run(shared_from_this(), std::move(input), std::move(output));
}

Task<CorvantaSdkVideoNoiseCancellationResult>
CorvantaNoiseCancellationEngine::run(Self self, CorvantaSdkVideoFile file,
                                     CorvantaSdkVideoFileDescriptor location) {
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
        co_await self->clean(input, *output, processedFiles.urls);
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

Task<> CorvantaNoiseCancellationEngine::clean(URL input, URL output, std::vector<URL>& processedFiles) {
    if (!credentialsManager_->isUserAuthenticated()) {
        throw Error(Error::userNotAuthenticated, "nobody is logged in");
    }
    videoValidator_.validateFileAt(input);
    const URL audio = co_await extractAudioForFile(input);
    processedFiles.push_back(audio);
    const URL cleaned = co_await cleanAudio(input, audio);
    processedFiles.push_back(cleaned);
    co_await fileProcessor_.mergeVideoWithAudio(input, cleaned, output);
}

Task<URL> CorvantaNoiseCancellationEngine::extractAudioForFile(URL at) {
    const URL audio = CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "wav");
    try {
        CommandPaths paths;
        const URL video = paths.input(at, PathForm::quoted);
        const URL sound = paths.temporary(audio, PathForm::quoted);
        std::string command = commandGenerator_.generateExtractAudioCommandFor(video, sound);
        co_await commandExecutor_->executeFFMPEGCommand(std::move(command));
    } catch (const std::exception& error) {
        // What a failed extraction has begun to write is of no use to anybody.
        fileProcessor_.removeFile(audio);
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::unableToProcessInput, detailsOf(error));
    }
    co_return audio;
}

Task<URL> CorvantaNoiseCancellationEngine::cleanAudio(URL fileURL, URL audioFileURL) {
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
    Cleaning cleaning(fileURL, audioFileURL, cleaned.url);
    const auto executor = co_await boost::asio::this_coro::executor;
    while (cleaning.cleanFrames(framesPerTurn)) {
        throwIfCancelled(co_await boost::asio::this_coro::cancellation_state);
        co_await boost::asio::post(executor, boost::asio::use_awaitable);
    }
    ownsLibrary_ = false;
    cleaning.end();
    cleaned.finished = true;
    co_return cleaned.url;
}

void CorvantaNoiseCancellationEngine::initialize() {
    withWideChars(Bundle::resourceDirectory(),
                  [this](const wchar_t* path) { ownsLibrary_ = talvoAudioGlobalInit(path) == 0; });
    state_ = ownsLibrary_ ? State::initialized : State::unknown;
}

// Only what this engine has made: by the time of its end the instance may be another engine's.
void CorvantaNoiseCancellationEngine::endSession() {
    if (std::exchange(ownsLibrary_, false)) {
        talvoAudioGlobalDestroy();
    }
}

void CorvantaNoiseCancellationEngine::remove(const std::vector<URL>& processedFiles) const {
    for (const URL& file : processedFiles) {
        fileProcessor_.removeFile(file);
    }
}

} // namespace corvanta
