#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGVideoTracksCommandGenerator.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>

#include <string_view>

namespace corvanta {

namespace {

std::string seconds(std::int64_t milliseconds) {
    return shortestDecimal(static_cast<float>(milliseconds) / 1000.0F);
}

std::string addTrackCommand(const std::string& inputPath, const std::string& tempPath, std::string_view track,
                            const std::string& outputPath) {
    return "-y -i " + ffmpegFormatted(inputPath) + " -i " + ffmpegFormatted(tempPath) +
           " -map 0:v -map 0:a -map " + std::string(track) + " -c:v copy -c:a copy " +
           ffmpegFormatted(outputPath);
}

} // namespace

std::string FFMPEGVideoTracksCommandGenerator::createVideoTrackCommand(const URL& tempURL,
                                                                       std::int64_t duration,
                                                                       std::int64_t width,
                                                                       std::int64_t height) const {
    return "-y -f lavfi -i color=c=red:s=" + std::to_string(width) + "x" + std::to_string(height) +
           ":d=" + seconds(duration) + " -vf \"format=yuv420p\" -c:v mpeg4 -r 30 -g 30 -b:v 500k " +
           ffmpegFormatted(tempURL.path());
}

std::string FFMPEGVideoTracksCommandGenerator::createAudioTrackCommand(const URL& tempURL,
                                                                       std::int64_t duration) const {
    return "-y -f lavfi -i anullsrc=channel_layout=stereo:sample_rate=44100:duration=" + seconds(duration) +
           " -c:a aac " + ffmpegFormatted(tempURL.path());
}

std::string FFMPEGVideoTracksCommandGenerator::generateAddVideoTrackCommand(
    const std::string& inputPath, const std::string& tempPath, const std::string& outputPath) const {
    return addTrackCommand(inputPath, tempPath, "1:v", outputPath);
}

std::string FFMPEGVideoTracksCommandGenerator::generateAddAudioTrackCommand(
    const std::string& inputPath, const std::string& tempPath, const std::string& outputPath) const {
    return addTrackCommand(inputPath, tempPath, "1:a", outputPath);
}

std::string FFMPEGVideoTracksCommandGenerator::generateRemoveVideoTrackCommand(const URL& inputPath,
                                                                               const URL& outputPath) const {
    return "-y -i " + ffmpegFormatted(inputPath.path()) + " -vn -c:a copy " +
           ffmpegFormatted(outputPath.path());
}

std::string FFMPEGVideoTracksCommandGenerator::generateRemoveAudioTrackCommand(const URL& inputPath,
                                                                               const URL& outputPath) const {
    return "-y -i " + inputPath.absoluteString() + " -an -c:v copy " + outputPath.absoluteString();
}

} // namespace corvanta
