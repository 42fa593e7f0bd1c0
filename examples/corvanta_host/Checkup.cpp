#include "Checkup.hpp"

#include "DataFolder.hpp"
#include "Failures.hpp"
#include "ProgramOutput.hpp"
#include "Run.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string_view>

#include <unistd.h>

using namespace corvanta;
namespace fs = std::filesystem;

namespace {

using State = Finding::State;
using Names = std::set<std::string, std::less<>>;

std::string programNamed(const char* variable, const char* name) {
    const char* chosen = std::getenv(variable);
    return chosen != nullptr && *chosen != '\0' ? chosen : name;
}

std::string placeOf(const std::string& program) {
    if (program.find('/') != std::string::npos) {
        return program;
    }
    const char* path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string place = folder + '/' + program;
        if (access(place.c_str(), X_OK) == 0) {
            return place;
        }
    }
    return "";
}

Finding programFinding(const char* name, const std::string& program) {
    const ProgramOutput output = outputOf(program, {"-version"});
    // "ffmpeg version 5.1.9-0+deb12u1 Copyright ..."
    std::istringstream words(output.text);
    std::string first;
    std::string version;
    words >> first >> version >> version;
    if (output.status != 0 || version.empty()) {
        return {name, State::missing,
                program + " can't be run: install ffmpeg, or set the variable of its name"};
    }
    return {name, State::ok, version, placeOf(program)};
}

// The second word of each line of one of ffmpeg's lists.
Names listOf(const std::string& ffmpeg, const char* option) {
    std::istringstream lines(outputOf(ffmpeg, {"-hide_banner", option}).text);
    Names names;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string flags;
        std::string name;
        if (words >> flags >> name) {
            // Several names of one container.
            std::istringstream parts(name);
            for (std::string part; std::getline(parts, part, ',');) {
                names.insert(part);
            }
        }
    }
    return names;
}

std::string absentOf(const Names& present, std::initializer_list<const char*> needed) {
    std::string absent;
    for (const char* name : needed) {
        if (!present.contains(name)) {
            absent += (absent.empty() ? "" : ", ") + std::string(name);
        }
    }
    return absent;
}

Finding neededFinding(const char* name, const Names& present, std::initializer_list<const char*> needed) {
    const std::string absent = absentOf(present, needed);
    return absent.empty() ? Finding{name, State::ok, "all that are needed"}
                          : Finding{name, State::missing, "ffmpeg was built without " + absent};
}

Finding encoderFinding(const Names& encoders) {
    Finding needed = neededFinding("encoders", encoders, {"mpeg4", "libx264", "aac", "mjpeg", "png"});
    if (needed.state != State::ok) {
        return needed;
    }
    std::string absent = absentOf(encoders, {"libx265"});
    if (!encoders.contains("libsvtav1") && !encoders.contains("libaom-av1")) {
        absent += (absent.empty() ? "" : ", ") + std::string("libsvtav1 and libaom-av1");
    }
    return absent.empty()
               ? Finding{"encoders", State::ok, "MPEG-4, H.264, HEVC, AV1, AAC"}
               : Finding{"encoders", State::limited,
                         "ffmpeg was built without " + absent + ": no HEVC or AV1 by the processor"};
}

bool encodes(const std::string& ffmpeg, const std::string& encoder) {
    std::vector<std::string> arguments{"-v", "error"};
    if (encoder.ends_with("vaapi")) {
        arguments.insert(arguments.end(), {"-vaapi_device", "/dev/dri/renderD128"});
    }
    arguments.insert(arguments.end(), {"-f", "lavfi", "-i", "color=s=256x256:d=0.2"});
    if (encoder.ends_with("vaapi")) {
        arguments.insert(arguments.end(), {"-vf", "format=nv12,hwupload"});
    }
    arguments.insert(arguments.end(), {"-c:v", encoder, "-f", "null", "-"});
    return outputOf(ffmpeg, arguments).status == 0;
}

Finding hardwareFinding(const std::string& ffmpeg, const Names& encoders) {
    std::string working;
    for (const std::string& encoder : encoders) {
        const bool isInHardware =
            encoder.ends_with("_nvenc") || encoder.ends_with("_vaapi") || encoder.ends_with("_qsv");
        const bool isOfUse =
            encoder.starts_with("h264") || encoder.starts_with("hevc") || encoder.starts_with("av1");
        if (isInHardware && isOfUse && encodes(ffmpeg, encoder)) {
            working += (working.empty() ? "" : ", ") + encoder;
        }
    }
    return {"hardware", State::ok, working.empty() ? "no encoder works: the processor encodes" : working};
}

std::string sizeText(std::uintmax_t bytes) {
    constexpr double unit = 1e9;
    return fmt::format("{:.1f} GB free", static_cast<double>(bytes) / unit);
}

Finding folderFinding(const char* name, const fs::path& folder) {
    // A file of no name, which goes with its descriptor where that is possible, and else by itself.
    const fs::path probe = folder / fmt::format(".corvanta_host-{}", getpid());
    std::error_code failed;
    const bool isWritten = (std::ofstream(probe) << "probe\n").flush().good();
    fs::remove(probe, failed);
    if (!isWritten) {
        return {name, State::missing, "can't be written to", folder.string()};
    }
    constexpr std::uintmax_t little = 1'000'000'000;
    const auto space = fs::space(folder, failed);
    return {name, failed || space.available >= little ? State::ok : State::limited,
            failed ? "" : sizeText(space.available), folder.string(),
            failed ? std::nullopt : std::optional(space.available)};
}

fs::path folderOf(const CorvantaSdkVideoFileDescriptor& file) {
    return fs::path(file.url("mp4")->path()).parent_path();
}

Finding storeFinding(const fs::path& folder) {
    using Status = CorvantaSdkVideoRequest::Status;
    const std::string path = (folder / "video-store.sqlite").string();
    try {
        std::size_t count = 0;
        for (const Status status :
             {Status::idle, Status::processing, Status::error, Status::cancelled, Status::complete}) {
            count += CorvantaSdkVideo->getRequests(status).size();
        }
        return {"store", State::ok, fmt::format("{} requests", count), path};
    } catch (const std::exception& error) {
        return {"store", State::missing, "can't be read: " + lineOf(error), path};
    }
}

// By cleaning a short noise.
Finding modelFinding(const std::string& ffmpeg, const fs::path& folder) {
    const fs::path noisy = folder / fmt::format("corvanta_host-{}.mp4", getpid());
    const fs::path clean = folder / fmt::format("corvanta_host-{}-clean", getpid());
    const fs::path written = clean.string() + ".mp4";
    std::string path;
    setConsoleSink([&path](const std::string& line) {
        constexpr std::string_view loaded = "WEIGHT ";
        path = line.starts_with(loaded) ? line.substr(loaded.size()) : path;
    });
    Finding finding{"model", State::ok, "cleans a short noise"};
    try {
        outputOf(ffmpeg, {"-v", "error", "-y", "-f", "lavfi", "-i", "color=s=64x64:r=30:d=0.5", "-f", "lavfi",
                          "-i", "anoisesrc=d=0.5", "-c:v", "mpeg4", "-c:a", "aac", noisy.string()});
        const CorvantaSdkVideoFile input(URL::fromFilePath(noisy.string()));
        const auto output = CorvantaSdkVideoFileDescriptor::custom(parseablePath(clean.string()));
        runInterruptible(CorvantaSdkVideo->engine()->clearNoiseForFile(input, output));
        if (!fs::exists(written)) {
            finding = {"model", State::missing, "the cleaned video could not be written"};
        }
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        finding = {"model", State::missing, "nothing can be cleaned: " + lineOf(error)};
    }
    setConsoleSink(nullptr);
    std::error_code absent;
    fs::remove(noisy, absent);
    fs::remove(written, absent);
    if (!path.empty()) {
        finding.path = path;
    }
    return finding;
}

} // namespace

std::vector<Finding> checkup() {
    const std::string ffmpeg = programNamed("CORVANTA_FFMPEG", "ffmpeg");
    std::vector<Finding> findings{{"module", State::ok, CORVANTA_VERSION},
                                  programFinding("ffmpeg", ffmpeg),
                                  programFinding("ffprobe", programNamed("CORVANTA_FFPROBE", "ffprobe"))};
    const bool hasFFmpeg = findings[1].state == State::ok;
    if (hasFFmpeg) {
        const Names encoders = listOf(ffmpeg, "-encoders");
        findings.push_back(encoderFinding(encoders));
        findings.push_back(hardwareFinding(ffmpeg, encoders));
        findings.push_back(neededFinding("filters", listOf(ffmpeg, "-filters"),
                                         {"concat", "scale", "pad", "crop", "fps", "format", "setsar", "trim",
                                          "tile", "color", "aformat", "aresample", "apad", "atrim",
                                          "showwavespic", "volume", "anullsrc"}));
        Names containers = listOf(ffmpeg, "-muxers");
        containers.merge(listOf(ffmpeg, "-demuxers"));
        findings.push_back(neededFinding(
            "containers", containers, {"mp4", "mov", "matroska", "webm", "nut", "wav", "image2", "concat"}));
    }
    const fs::path documents = folderOf(CorvantaSdkVideoFileDescriptor::files("x"));
    const auto& obstacle = DataFolder::obstacle();
    findings.push_back(obstacle ? Finding{"documents", State::missing, *obstacle}
                                : folderFinding("documents", documents));
    findings.push_back(folderFinding("caches", folderOf(CorvantaSdkVideoFileDescriptor::cache("x"))));
    std::error_code absent;
    const fs::path temporary = fs::temp_directory_path(absent);
    findings.push_back(folderFinding("temporary", absent ? "/tmp" : temporary));
    findings.push_back(obstacle ? Finding{"store", State::missing, "no requests are kept"}
                                : storeFinding(documents.parent_path()));
    if (hasFFmpeg) {
        findings.push_back(modelFinding(ffmpeg, absent ? "/tmp" : temporary));
    }
    return findings;
}
