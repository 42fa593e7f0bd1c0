#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/LogTail.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/ProbeOutput.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/WrittenOutput.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Cancellation.hpp>
#include <platform/ConsoleSink.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/FileManager.hpp>
#include <platform/InProcessProbe.hpp>
#include <platform/SessionWait.hpp>

#include <boost/asio/this_coro.hpp>

#include <cmath>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace corvanta {

namespace asio = boost::asio;

namespace {

using SessionPointer = std::shared_ptr<Session>;

// What hears of a session's id, with a meter that hears of the session.
struct MeasuredRun {
    FFMPEGCommandExecutor::OnUpdateSessionId onUpdateSessionId;
    std::shared_ptr<ProgressMeter> meter;

    void operator()(std::int64_t sessionId) const {
        if (onUpdateSessionId) {
            onUpdateSessionId(sessionId);
        }
    }
};

// Throws unless the session that `start` starts ends with success; `tail` is what the program itself has
// said.
Task<SessionPointer> run(StartSession start, std::string program, std::shared_ptr<const LogTail> tail) {
    const SessionPointer session = co_await untilEnded(std::move(start));
    const auto returnCode = session->getReturnCode();
    if (!returnCode || !returnCode->isValueSuccess()) {
        throwIfCancelled(co_await asio::this_coro::cancellation_state);
        const int code = returnCode ? returnCode->getValue() : ReturnCode::notStarted;
        std::string details = session->getFailure().value_or(tail ? tail->text() : "");
        if (details.empty()) {
            details = program + (code == ReturnCode::cancelled
                                     ? " was stopped"
                                     : " returned " + std::to_string(code) + " and gave no reason");
        }
        throw PlatformError(FFmpegKitConfig::sessionStateToString(session->getState()).value_or(""), code,
                            std::move(details));
    }
    co_return session;
}

// In place of the 0 that ffmpeg returned.
constexpr int outputNotWhole = 1;

struct Display {
    Orientation orientation = Orientation::portrait;
    VideoSize size;
};

Display displayOf(const std::vector<CorvantaSdkVideoTrackInformation>& videos,
                  const AffineTransform& transform) {
    Display display;
    for (const CorvantaSdkVideoTrackInformation& track : videos) {
        const auto width = static_cast<double>(track.width);
        const auto height = static_cast<double>(track.height);
        display.size = {std::abs(transform.a * width + transform.c * height),
                        std::abs(transform.b * width + transform.d * height)};
        display.orientation =
            display.size.height < display.size.width ? Orientation::landscape : Orientation::portrait;
    }
    return display;
}

AffineTransform preferredTransformForStoredFile(const URL& url) {
    std::optional<AffineTransform> transform = probedDisplayTransform(url.path());
    if (!transform) {
        try {
            transform = AssetReader(url).firstVideoTrackTransform();
        } catch (const PlatformError&) {
            // A file that can't be loaded is told like one without the track.
        }
    }
    if (!transform) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::missingVideoTrackToMerge,
                                    url.path() + ": its video track can't be read");
    }
    return *transform;
}

// ffprobe is told to be quiet, so the file is opened here for the reason.
std::string reasonForNoProbe(const URL& url, const std::exception& error) {
    const auto* run = dynamic_cast<const PlatformError*>(&error);
    if (run != nullptr && run->code() == 1) {
        try {
            AssetReader(url).duration();
        } catch (const PlatformError& refusal) {
            return refusal.details();
        }
    }
    return url.path() + ": " + detailsOf(error);
}

} // namespace

Task<> FFMPEGCommandExecutor::executeFFMPEGCommand(std::string command) {
    return executeFFMPEGCommand(std::move(command), nullptr);
}

Task<> FFMPEGCommandExecutor::executeMeasured(std::string command, OnUpdateSessionId onUpdateSessionId,
                                              std::shared_ptr<ProgressMeter> meter) {
    if (meter) {
        meter->wait();
        onUpdateSessionId = MeasuredRun{std::move(onUpdateSessionId), meter};
    }
    co_await executeFFMPEGCommand(std::move(command), std::move(onUpdateSessionId));
    if (meter) {
        meter->endPart();
    }
}

std::shared_ptr<void> FFMPEGCommandExecutor::prepareMediaInformation(const std::vector<URL>& /*urls*/) {
    return nullptr;
}

void FFMPEGCommandExecutorImplementation::cancelCommandExecution(std::int64_t sessionId) {
    FFmpegKit::cancel(sessionId);
}

Task<> FFMPEGCommandExecutorImplementation::executeFFMPEGCommand(std::string command,
                                                                 OnUpdateSessionId onUpdateSessionId) {
    const auto output = std::make_shared<WrittenOutput>(command);
    const auto tail = std::make_shared<LogTail>();
    StatisticsCallback onStatistics;
    StartCallback onStart;
    if (const auto* const measured = onUpdateSessionId.target<MeasuredRun>()) {
        onStatistics = [meter = measured->meter](const Statistics& statistics) {
            meter->advance(static_cast<double>(statistics.timeMillis) / 1000, statistics.speed);
        };
        onStart = [meter = measured->meter] { meter->start(); };
    }
    StartSession start = [&](CompleteCallback onComplete) {
        const auto onLog = [output, tail](const Log& log) {
            output->hear(log.getMessage());
            tail->add(log.getMessage());
            printToConsole(log.getMessage());
        };
        auto session = FFmpegKit::executeAsync(command, std::move(onComplete), onLog, onStatistics, onStart);
        if (onUpdateSessionId) {
            onUpdateSessionId(session->getSessionId());
        }
        return session;
    };
    const SessionPointer session = co_await run(std::move(start), "ffmpeg", tail);
    if (!output->isWhole()) {
        const std::string said = tail->text();
        throw PlatformError(FFmpegKitConfig::sessionStateToString(session->getState()).value_or(""),
                            outputNotWhole, "the output is not whole" + (said.empty() ? "" : ": " + said));
    }
}

Task<ExecutionResult> FFMPEGCommandExecutorImplementation::executeFFMPEGProbeCommand(std::string arguments) {
    StartSession start = [&arguments](CompleteCallback onComplete) {
        return FFprobeKit::executeAsync(arguments, std::move(onComplete));
    };
    const SessionPointer session = co_await run(std::move(start), "ffprobe", nullptr);
    ExecutionResult result{session->getOutput().value_or("")};
    co_return result;
}

std::shared_ptr<void>
FFMPEGCommandExecutorImplementation::prepareMediaInformation(const std::vector<URL>& urls) {
    std::vector<std::string> files;
    for (const URL& url : urls) {
        std::string text = url.absoluteString();
        files.push_back(removingPercentEncoding(text).value_or(std::move(text)));
    }
    return FFprobeKit::prepare(std::move(files));
}

Task<CorvantaSdkVideoInformation> FFMPEGCommandExecutorImplementation::getMediaInformation(URL url) {
    CommandPaths paths;
    std::optional<ExecutionResult> result;
    std::string details = url.path() + ": ffprobe's answer can't be read";
    try {
        const URL file = paths.input(url, PathForm::quotedURL);
        if (FileManager::isEndless(url.path())) {
            throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed,
                                        "reading it could wait for ever");
        }
        std::string arguments = "-i " + ffmpegFormatted(file.absoluteString()) +
                                " -v quiet -print_format json -show_format -show_streams -hide_banner";
        result = co_await executeFFMPEGProbeCommand(std::move(arguments));
    } catch (const std::exception& error) {
        if (isCancellation(error)) {
            throw;
        }
        // Whatever kept ffprobe from answering, the caller learns that there is no information.
        details = reasonForNoProbe(url, error);
    }
    auto probe = result ? parseProbeOutput(result->output) : std::nullopt;
    if (!probe) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed, details);
    }
    const auto transform = probe->videos.empty() ? AffineTransform{} : preferredTransformForStoredFile(url);
    const Display display = displayOf(probe->videos, transform);
    const std::int64_t durationMillis = millisecondsFromSeconds(probe->duration);
    CorvantaSdkVideoInformation information(std::move(url), probe->size, durationMillis,
                                            std::move(probe->format), std::move(probe->videos),
                                            std::move(probe->audios), display.orientation, display.size);
    information.covers = std::move(probe->covers);
    co_return information;
}

} // namespace corvanta
