#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>

#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Editor/Cut/ExactCut.hpp>
#include <CorvantaSdkVideo/Editor/WaveformCommand.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <platform/Aside.hpp>
#include <platform/AssetDuration.hpp>
#include <platform/Cancellation.hpp>
#include <platform/UUID.hpp>

#include <algorithm>
#include <functional>
#include <sstream>
#include <stop_token>
#include <string>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

Task<double> durationOf(URL url) {
    try {
        co_return co_await assetDuration(std::move(url));
    } catch (const std::exception& error) {
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::invalidFile, detailsOf(error));
    }
}

std::string rangeDetails(double start, double end, double duration) {
    std::ostringstream details;
    details << start << " s to " << end << " s is no part of a video of " << duration << " s";
    return details.str();
}

std::vector<CorvantaSdkVideoTimeRange> rangesOf(const CorvantaSdkVideoEditorInput& video) {
    if (video.ranges.empty()) {
        return {{video.startPosition, video.endPosition}};
    }
    return video.ranges;
}

CorvantaSdkVideoCutWay wayOfAll(const std::vector<CorvantaSdkVideoCutWay>& ways) {
    const bool isOne = std::ranges::adjacent_find(ways, std::ranges::not_equal_to()) == ways.end();
    return isOne && !ways.empty() ? ways.front() : CorvantaSdkVideoCutWay::joined;
}

} // namespace

CorvantaSdkVideoEditorImplementation::CorvantaSdkVideoEditorImplementation(
    std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor, FFMPEGCommandGenerator commandGenerator,
    CorvantaSdkVideoFileValidator videoValidator)
    : credentialsManager_(std::move(credentialsManager)), commandExecutor_(std::move(commandExecutor)),
      commandGenerator_(commandGenerator), videoValidator_(videoValidator) {}

Task<CorvantaSdkVideoEditorResult>
CorvantaSdkVideoEditorImplementation::edit(CorvantaSdkVideoEditorInput video) {
    Logger::addLog(Event::editVideo, EventMessage::editVideo(video.videoURL));
    requireLogin(*credentialsManager_);
    videoValidator_.validateFileAt(video.videoURL);
    auto ranges = rangesOf(video);
    co_await validateTrimRanges(video.videoURL, ranges);
    if (ranges.size() > 1 && video.cut == CorvantaSdkVideoCut::copied) {
        throw Error(Error::invalidTrimRange, "several ranges can't be cut by copying alone");
    }
    CorvantaSdkVideoEditorResult result{video.outputURL};
    Meter meter = video.onProgress ? std::make_shared<ProgressMeter>(video.onProgress) : nullptr;
    try {
        result.rangeWays = co_await write(std::move(video), std::move(ranges), meter);
        result.cutWay = wayOfAll(result.rangeWays);
        if (meter) {
            meter->complete();
        }
    } catch (const std::exception& error) {
        Logger::logError(Event::editVideo, EventMessage::editVideoFailed(error));
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::trimFailed, detailsOf(error));
    }
    co_return result;
}

Task<std::vector<CorvantaSdkVideoCutWay>>
CorvantaSdkVideoEditorImplementation::write(CorvantaSdkVideoEditorInput video,
                                            std::vector<CorvantaSdkVideoTimeRange> ranges, Meter meter) {
    bool copies = video.cut == CorvantaSdkVideoCut::copied;
    if (video.cut == CorvantaSdkVideoCut::automatic && ranges.size() == 1) {
        const auto inspection = co_await ExactCut::inspect(video.videoURL, ranges.front());
        copies = !inspection.copyingLoses;
    }
    if (copies) {
        co_await copy(std::move(video), ranges.front(), std::move(meter));
        std::vector<CorvantaSdkVideoCutWay> ways(1, CorvantaSdkVideoCutWay::copied);
        co_return ways;
    }
    const ExactCut exact(commandExecutor_);
    co_return co_await exact.write(std::move(video), std::move(ranges), std::move(meter));
}

Task<> CorvantaSdkVideoEditorImplementation::copy(CorvantaSdkVideoEditorInput video,
                                                  CorvantaSdkVideoTimeRange range, Meter meter) {
    std::function<void(std::stop_token)> look = [source = video.videoURL, target = video.outputURL.path(),
                                                 range](const std::stop_token&) {
        requireFreeSpace(target, leastCopiedBytes(source, {range}), Error::trimFailed);
    };
    co_await runAside(std::move(look));
    if (meter) {
        meter->setTotal(range.end - range.start);
        meter->beginPart(1, range.end - range.start);
    }
    CommandPaths paths;
    const URL input = paths.input(video.videoURL, PathForm::quotedInTemplate);
    const URL output = paths.output(video.outputURL, PathForm::quoted);
    FFMPEGCommand command = commandGenerator_.generateEditCommand(input, range.start, range.end,
                                                                  video.rotationAngle, video.volumen, output);
    co_await commandExecutor_->executeMeasured(std::move(command.script), nullptr, std::move(meter));
    paths.finish();
}

Task<CorvantaSdkVideoCutInspection>
CorvantaSdkVideoEditorImplementation::inspectCut(URL video, CorvantaSdkVideoTimeRange range) {
    requireLogin(*credentialsManager_);
    videoValidator_.validateFileAt(video);
    std::vector<CorvantaSdkVideoTimeRange> ranges(1, range);
    co_await validateTrimRanges(video, std::move(ranges));
    co_return co_await ExactCut::inspect(std::move(video), range);
}

Task<URL> CorvantaSdkVideoEditorImplementation::getThumbnailForVideo(URL at, double interval,
                                                                     std::optional<std::int64_t> width,
                                                                     std::optional<std::int64_t> height) {
    requireLogin(*credentialsManager_);
    videoValidator_.validateFileAt(at);
    co_await validateThumbnailPosition(at, interval);
    const URL output = CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()),
                                                        FileExtension(FileExtension::jpg).rawValue());
    try {
        CommandPaths paths;
        const URL video = paths.input(at, PathForm::quoted);
        const URL image = paths.temporary(output, PathForm::quotedImage);
        FFMPEGCommand command =
            commandGenerator_.generateThumbnailForTrim(video, interval, width, height, image.path());
        co_await commandExecutor_->executeFFMPEGCommand(std::move(command.script));
    } catch (const std::exception& error) {
        if (isCancellation(error)) {
            // Nobody hears of a picture that ffmpeg wrote just before it was stopped.
            CorvantaSdkVideoUtils::deleteFileIfExists(output);
            throw;
        }
        throw Error(Error::trimFailed, detailsOf(error));
    }
    co_return output;
}

Task<std::optional<URL>> CorvantaSdkVideoEditorImplementation::getWaveformForVideo(URL at, std::int64_t width,
                                                                                   std::int64_t height) {
    requireLogin(*credentialsManager_);
    videoValidator_.validateFileAt(at);
    const URL output = CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "png");
    try {
        CommandPaths paths;
        const URL video = paths.input(at, PathForm::quoted);
        const URL image = paths.temporary(output, PathForm::quotedImage);
        std::string command = waveformCommand(video, width, height, image);
        co_await commandExecutor_->executeFFMPEGCommand(std::move(command));
    } catch (const std::exception& error) {
        CorvantaSdkVideoUtils::deleteFileIfExists(output);
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::trimFailed, detailsOf(error));
    }
    co_return output;
}

Task<>
CorvantaSdkVideoEditorImplementation::validateTrimRanges(URL url,
                                                         std::vector<CorvantaSdkVideoTimeRange> ranges) {
    const double duration = co_await durationOf(std::move(url));
    for (const auto& [start, end] : ranges) {
        if (!(start >= 0 && end > start && duration >= end)) {
            throw Error(Error::invalidTrimRange, rangeDetails(start, end, duration));
        }
    }
}

Task<> CorvantaSdkVideoEditorImplementation::validateThumbnailPosition(URL url, double interval) {
    const double duration = co_await durationOf(std::move(url));
    if (!(duration >= interval)) {
        throw Error(Error::invalidTrimRange, rangeDetails(interval, duration, duration));
    }
}

std::shared_ptr<CorvantaSdkVideoEditor> makeCorvantaSdkVideoEditor() {
    return std::make_shared<CorvantaSdkVideoEditorImplementation>();
}

} // namespace corvanta
