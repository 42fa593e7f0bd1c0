#include "support/MediaFixtures.hpp"

#include "support/Processes.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <mutex>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace corvanta::test {

namespace {

std::string number(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

void append(std::vector<std::string>& words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
}

std::string pictureSource(const Picture& picture, double clipSeconds) {
    const bool hasOptions = picture.source.find('=') != std::string::npos;
    return picture.source + (hasOptions ? ":" : "=") + "size=" + std::to_string(picture.width) + "x" +
           std::to_string(picture.height) + ":rate=" + picture.rate +
           ":duration=" + number(picture.seconds.value_or(clipSeconds));
}

std::string soundSource(const Sound& sound, double clipSeconds) {
    return "sine=frequency=" + number(sound.frequency) + ":sample_rate=" + std::to_string(sound.sampleRate) +
           ":duration=" + number(sound.seconds.value_or(clipSeconds));
}

std::vector<std::string> argumentsFor(const Clip& clip) {
    std::vector<std::string> inputs;
    std::vector<std::string> options;
    std::size_t input = 0;
    for (const Picture& picture : clip.pictures) {
        append(inputs, {"-f", "lavfi", "-i", pictureSource(picture, clip.seconds)});
        append(options, {"-map", std::to_string(input++)});
    }
    for (std::size_t track = 0; track < clip.sounds.size(); ++track) {
        const Sound& sound = clip.sounds[track];
        const std::string position = std::to_string(track);
        append(inputs, {"-f", "lavfi", "-i", soundSource(sound, clip.seconds)});
        append(options, {"-map", std::to_string(input++), "-filter:a:" + position,
                         "aformat=channel_layouts=" + sound.layout});
        if (!sound.language.empty()) {
            append(options, {"-metadata:s:a:" + position, "language=" + sound.language});
        }
    }
    append(options, wordsOf(clip.codecs));
    if (clip.cover) {
        const std::string position = std::to_string(clip.pictures.size());
        append(inputs, {"-f", "lavfi", "-i", "color=c=green:size=300x400:rate=1:duration=1"});
        append(options, {"-map", std::to_string(input++), "-c:v:" + position, "mjpeg",
                         "-disposition:v:" + position, "attached_pic"});
    }
    append(inputs, options);
    return inputs;
}

// A display matrix is written by stream copy only.
void turn(const std::string& path, int rotation) {
    const std::string upright = path + ".upright" + std::filesystem::path(path).extension().string();
    std::filesystem::rename(path, upright);
    const int degrees = ((rotation % 360) + 360) % 360;
    runTool("ffmpeg", {"-v", "error", "-y", "-i", upright, "-map", "0", "-c", "copy", "-metadata:s:v:0",
                       "rotate=" + std::to_string(degrees), path});
    std::filesystem::remove(upright);
}

} // namespace

std::string makeClip(const Clip& clip) {
    static std::mutex mutex;
    static TemporaryDirectory directory;
    static std::map<std::vector<std::string>, std::string> made;

    const std::lock_guard lock(mutex);
    std::vector<std::string> arguments = argumentsFor(clip);
    std::vector<std::string> key = arguments;
    append(key, {clip.container, std::to_string(clip.rotation)});
    std::string& path = made[key];
    if (path.empty()) {
        const std::string name = "clip" + std::to_string(made.size()) + "." + clip.container;
        append(arguments, {directory.file(name)});
        arguments.insert(arguments.begin(), {"-v", "error", "-nostdin", "-y"});
        runTool("ffmpeg", arguments);
        if (clip.rotation != 0) {
            turn(directory.file(name), clip.rotation);
        }
        path = directory.file(name);
    }
    return path;
}

std::string runTool(std::string_view tool, const std::vector<std::string>& arguments) {
    Program program{std::string(tool), arguments};
    if (program.wait() != 0) {
        throw std::runtime_error(std::string(tool) + '\n' + program.errors());
    }
    return program.output();
}

std::vector<double> ffprobeNumbers(const std::string& path, const std::string& stream,
                                   const std::string& entries) {
    std::vector<double> numbers;
    for (const std::string& line :
         wordsOf(runTool("ffprobe", {"-v", "error", "-select_streams", stream, "-show_entries", entries,
                                     "-of", "csv=print_section=0", path}))) {
        numbers.push_back(line == "N/A" ? std::nan("") : std::stod(line));
    }
    return numbers;
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::istringstream stream{std::string(text)};
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

CorvantaSdkVideoInformation probed(const std::string& path) {
    FFMPEGCommandExecutorImplementation executor;
    return runBlocking(executor.getMediaInformation(URL::fromFilePath(path)));
}

bool isNear(const Colour& left, const Colour& right, double tolerance) {
    return std::abs(left.red - right.red) <= tolerance && std::abs(left.green - right.green) <= tolerance &&
           std::abs(left.blue - right.blue) <= tolerance;
}

std::ostream& operator<<(std::ostream& stream, const Colour& colour) {
    return stream << "(" << colour.red << ", " << colour.green << ", " << colour.blue << ")";
}

Colour Frame::mean(const Region& region) const {
    const auto edge = [](double fraction, int side) {
        return static_cast<int>(std::lround(fraction * side));
    };
    Colour sum;
    double count = 0;
    for (int y = edge(region.top, height); y < edge(region.bottom, height); ++y) {
        for (int x = edge(region.left, width); x < edge(region.right, width); ++x) {
            const auto pixel = static_cast<std::size_t>(y * width + x) * 3;
            const auto component = [&](std::size_t offset) {
                return static_cast<double>(static_cast<unsigned char>(rgb.at(pixel + offset)));
            };
            sum.red += component(0);
            sum.green += component(1);
            sum.blue += component(2);
            ++count;
        }
    }
    if (count == 0) {
        throw std::runtime_error("a region without pixels");
    }
    return {sum.red / count, sum.green / count, sum.blue / count};
}

// The size stands in front of the pixels: "P6\n{width} {height}\n255\n".
Frame frameFromPPM(std::string_view images, std::size_t& offset) {
    const std::string header(images.substr(std::min(offset, images.size()), 32));
    Frame frame;
    int length = 0;
    if (std::sscanf(header.c_str(), "P6 %d %d 255%n", &frame.width, &frame.height, &length) != 2 ||
        length == 0) {
        throw std::runtime_error("no frame");
    }
    offset += static_cast<std::size_t>(length) + 1;
    const std::size_t size = static_cast<std::size_t>(frame.width * frame.height) * 3;
    frame.rgb = images.substr(offset, size);
    offset += size;
    return frame;
}

Frame frameAt(const std::string& path, double seconds, int videoTrack) {
    std::size_t offset = 0;
    return frameFromPPM(runTool("ffmpeg", {"-v", "error", "-ss", number(seconds), "-i", path, "-map",
                                           "0:v:" + std::to_string(videoTrack), "-frames:v", "1", "-c:v",
                                           "ppm", "-f", "image2pipe", "-"}),
                        offset);
}

Colour meanColour(const std::string& path, double seconds, const Region& region, int videoTrack) {
    return frameAt(path, seconds, videoTrack).mean(region);
}

} // namespace corvanta::test
