#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/ProbeOutput.hpp>
#include <platform/AssetReader.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/FileManager.hpp>

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <atomic>
#include <cmath>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace corvanta {

namespace asio = boost::asio;

namespace {

using SessionPointer = std::shared_ptr<Session>;

// A caller that waits for a session. It is resumed by whichever comes last, the session's end or the return
// of what started the session: that may still use what the resumed caller destroys.
template <typename Handler>
class Waiting {
  public:
    explicit Waiting(Handler handler)
        : handler_(std::move(handler)),
          work_(asio::make_work_guard(asio::get_associated_executor(handler_))) {}

    void arrive() {
        if (--missing_ == 0) {
            asio::post(work_.get_executor(),
                       [handler = std::move(handler_), session = std::move(session)]() mutable {
                           std::move(handler)(std::move(session));
                       });
        }
    }

    SessionPointer session;

  private:
    Handler handler_;
    // Keeps the caller's event loop running as long as the session does.
    asio::executor_work_guard<asio::associated_executor_t<Handler>> work_;
    std::atomic<int> missing_ = 2;
};

// Suspends the caller until the session that `start` starts has ended, and resumes it on its own executor.
template <typename Start>
Task<SessionPointer> untilEnded(Start start) {
    return asio::async_initiate<const asio::use_awaitable_t<>, void(SessionPointer)>(
        [](auto handler, Start begin) {
            const auto waiting = std::make_shared<Waiting<decltype(handler)>>(std::move(handler));
            begin([waiting](const SessionPointer& session) {
                waiting->session = session;
                waiting->arrive();
            });
            waiting->arrive();
        },
        asio::use_awaitable, std::move(start));
}

void throwIfFailed(const Session& session) {
    const auto returnCode = session.getReturnCode();
    if (!returnCode || !returnCode->isValueSuccess()) {
        throw PlatformError(FFmpegKitConfig::sessionStateToString(session.getState()).value_or(""),
                            returnCode ? returnCode->getValue() : ReturnCode::notStarted);
    }
}

// Whether ffprobe, given the URL's text between double quotes, opens the file at the URL's path and nothing
// else.
bool isProbeable(const URL& url) {
    const auto written = removingPercentEncoding(url.absoluteString());
    const std::string path = url.path();
    return written && (*written == path || *written == "file:" + path || *written == "file://" + path) &&
           !hasUnwritableCharacter(*written) && !FileManager::isEndless(path);
}

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
    std::optional<AffineTransform> transform;
    try {
        transform = AssetReader(url).firstVideoTrackTransform();
    } catch (const PlatformError&) {
        // A file that can't be loaded is told like one without the track.
    }
    if (!transform) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::missingVideoTrackToMerge);
    }
    return *transform;
}

} // namespace

Task<> FFMPEGCommandExecutor::executeFFMPEGCommand(std::string command) {
    return executeFFMPEGCommand(std::move(command), nullptr);
}

void FFMPEGCommandExecutorImplementation::cancelCommandExecution(std::int64_t sessionId) {
    FFmpegKit::cancel(sessionId);
}

Task<> FFMPEGCommandExecutorImplementation::executeFFMPEGCommand(std::string command,
                                                                 OnUpdateSessionId onUpdateSessionId) {
    const auto start = [&command, &onUpdateSessionId](CompleteCallback onComplete) {
        const auto session = FFmpegKit::executeAsync(
            command, std::move(onComplete),
            [](const Log& log) { std::cout << log.getMessage() + '\n'
                                           << std::flush; }, nullptr);
        if (onUpdateSessionId) {
            onUpdateSessionId(session->getSessionId());
        }
    };
    const SessionPointer session = co_await untilEnded(start);
    throwIfFailed(*session);
}

Task<ExecutionResult> FFMPEGCommandExecutorImplementation::executeFFMPEGProbeCommand(std::string arguments) {
    const auto start = [&arguments](CompleteCallback onComplete) {
        FFprobeKit::executeAsync(arguments, std::move(onComplete));
    };
    const SessionPointer session = co_await untilEnded(start);
    throwIfFailed(*session);
    ExecutionResult result{session->getOutput().value_or("")};
    co_return result;
}

Task<CorvantaSdkVideoInformation> FFMPEGCommandExecutorImplementation::getMediaInformation(URL url) {
    if (!isProbeable(url)) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed);
    }
    std::string arguments = "-i " + ffmpegFormatted(url.absoluteString()) +
                            " -v quiet -print_format json -show_format -show_streams -hide_banner";
    std::optional<ExecutionResult> result;
    try {
        result = co_await executeFFMPEGProbeCommand(std::move(arguments));
    } catch (const std::exception&) {
        // Whatever kept ffprobe from answering, the caller learns that there is no information.
    }
    auto probe = result ? parseProbeOutput(result->output) : std::nullopt;
    if (!probe) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::getInformationFailed);
    }
    const auto transform = probe->videos.empty() ? AffineTransform{} : preferredTransformForStoredFile(url);
    const Display display = displayOf(probe->videos, transform);
    const std::int64_t durationMillis = millisecondsFromSeconds(probe->duration);
    co_return CorvantaSdkVideoInformation(std::move(url), probe->size, durationMillis,
                                          std::move(probe->format), std::move(probe->videos),
                                          std::move(probe->audios), display.orientation, display.size);
}

} // namespace corvanta
