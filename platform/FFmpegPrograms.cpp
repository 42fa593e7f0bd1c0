#include <platform/FFmpegPrograms.hpp>

#include <cstdlib>

namespace corvanta {

namespace {

constexpr const char* ffmpegVariable = "CORVANTA_FFMPEG";
constexpr const char* ffprobeVariable = "CORVANTA_FFPROBE";

std::string valueOf(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr ? value : "";
}

std::string programFor(const char* variable, const char* name) {
    const std::string chosen = valueOf(variable);
    return chosen.empty() ? name : chosen;
}

} // namespace

std::string ffmpegProgram() { return programFor(ffmpegVariable, "ffmpeg"); }

std::string ffprobeProgram() { return programFor(ffprobeVariable, "ffprobe"); }

bool isFFprobeChosen() { return !valueOf(ffprobeVariable).empty(); }

} // namespace corvanta
