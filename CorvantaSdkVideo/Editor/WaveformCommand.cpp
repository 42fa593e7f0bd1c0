#include <CorvantaSdkVideo/Editor/WaveformCommand.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>

namespace corvanta {

std::string waveformCommand(const URL& video, std::int64_t width, std::int64_t height, const URL& image) {
    return "-y -i " + ffmpegFormatted(video.path()) +
           " -filter_complex \"[0:a:0]aformat=channel_layouts=mono,showwavespic=s=" + std::to_string(width) +
           "x" + std::to_string(height) + ":colors=white:scale=cbrt:filter=peak\" -frames:v 1 " +
           ffmpegFormatted(image.path());
}

} // namespace corvanta
