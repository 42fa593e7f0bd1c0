#include <CorvantaSdkVideo/NoiseCancellation/CorvantaFileProcessor.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Cancellation.hpp>

#include <string>
#include <system_error>
#include <utility>

namespace corvanta {

namespace {

constexpr int pictureRate = 30;

VideoTrackFormat firstVideoTrack(const URL& video) {
    if (auto format = AssetReader(video).firstVideoTrackFormat()) {
        return *std::move(format);
    }
    throw CorvantaSdkVideoError(CorvantaSdkVideoError::unableToProcessOutput, video.path() + ": no picture");
}

bool canBeCopied(const VideoTrackFormat& format) {
    const bool inMpeg4 = format.codec == "h264" || format.codec == "hevc" || format.codec == "mpeg4";
    return inMpeg4 && format.hasTimes && format.hasExactRate(pictureRate);
}

// Named, since ffmpeg by itself leaves out the time of recording, and the sound's tags with its stream.
std::string tagsOf(const URL& video, const VideoTrackFormat& format) {
    std::string tags = " -map_metadata 0 -map_metadata:s:v:0 0:s:v:" + std::to_string(format.position);
    if (const auto sound = AssetReader(video).soundTrack()) {
        tags += " -map_metadata:s:a:0 0:s:" + std::to_string(*sound);
    }
    return tags;
}

std::string exportCommand(const VideoTrackFormat& format, const std::string& tags, const URL& video,
                          const URL& audio, const URL& output) {
    const std::string inputs = "-i " + ffmpegFormatted(video.path()) + " -i " +
                               ffmpegFormatted(audio.path()) +
                               " -map 0:v:" + std::to_string(format.position) + " -map 1:a:0" + tags;
    // At 6 bits a sample the encoder's default search takes longer than the cleaning itself, for nothing that
    // could be heard.
    const std::string sound = " -c:a aac -b:a 96k -aac_coder fast -f mp4 " + ffmpegFormatted(output.path());
    if (canBeCopied(format)) {
        // Apple's players know HEVC by this tag alone.
        return "-y " + inputs + " -c:v copy" + (format.codec == "hevc" ? " -tag:v hvc1" : "") + sound;
    }
    // Without autorotation the display matrix goes over as it is; H.264 wants even sides. The filter takes
    // the picture that is nearest to each thirtieth of a second, where the option "-r" takes one that is up
    // to two of them away. No B-frames and a key frame each second keep the result fit for cutting by stream
    // copy.
    return "-y -noautorotate " + inputs +
           " -vf crop=trunc(iw/2)*2:trunc(ih/2)*2,fps=" + std::to_string(pictureRate) +
           " -metadata:s:v:0 encoder= -c:v libx264 -preset veryfast -crf 16 -bf 0 -g 30 -pix_fmt yuv420p" +
           sound;
}

} // namespace

CorvantaFileProcessor::CorvantaFileProcessor(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor)
    : commandExecutor_(std::move(commandExecutor)) {}

bool CorvantaFileProcessor::copiesPicture(const URL& video) {
    try {
        const auto format = AssetReader(video).firstVideoTrackFormat();
        return !format || canBeCopied(*format);
    } catch (const PlatformError&) {
        return true;
    }
}

Task<> CorvantaFileProcessor::mergeVideoWithAudio(URL videoURL, URL audioURL, URL outputURL,
                                                  std::shared_ptr<ProgressMeter> meter) const {
    const VideoTrackFormat format = firstVideoTrack(videoURL);
    if (!AssetReader(audioURL).hasAudioTrack()) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::unableToProcessOutput,
                                    audioURL.path() + ": no sound");
    }
    const std::string tags = tagsOf(videoURL, format);
    CommandPaths paths;
    std::string command;
    try {
        const URL video = paths.input(videoURL, PathForm::quoted);
        const URL audio = paths.input(audioURL, PathForm::quoted);
        command = exportCommand(format, tags, video, audio, paths.output(outputURL, PathForm::quoted));
    } catch (const std::system_error& error) {
        Logger::logError(Event::mergeVideoAndAudioFailed, EventMessage::mergeVideoAndAudioFailed(error));
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::unableToProcessOutput, detailsOf(error));
    }
    CorvantaSdkVideoUtils::deleteFileIfExists(outputURL);
    try {
        co_await commandExecutor_->executeMeasured(std::move(command), nullptr, meter);
        paths.finish();
        if (meter) {
            meter->complete();
        }
    } catch (const std::exception& error) {
        if (isCancellation(error)) {
            throw;
        }
        // Callers learn of a failed export from the file.
    }
}

void CorvantaFileProcessor::removeFile(const URL& at) const { CorvantaSdkVideoUtils::deleteFileIfExists(at); }

} // namespace corvanta
