#include "Commands.hpp"
#include "Inputs.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>

#include <memory>

using namespace corvanta;
using json = nlohmann::ordered_json;

namespace {

const char* orientationName(Orientation orientation) {
    return orientation == Orientation::portrait ? "portrait" : "landscape";
}

json toJson(const CorvantaSdkVideoTrackInformation& track) {
    return {{"index", track.index},
            {"width", track.width},
            {"height", track.height},
            {"rotatedWidth", track.rotatedWidth},
            {"rotatedHeight", track.rotatedHeight},
            {"codec", track.codec},
            {"codecTag", track.codecTag},
            {"pixelFormat", track.pixelFormat},
            {"bitRate", track.bitRate},
            {"frameRate", track.frameRate},
            {"rotation", track.rotation},
            {"durationMillis", track.durationMillis}};
}

json toJson(const CorvantaSdkVideoAudioTrackInformation& track) {
    return {{"index", track.index},
            {"codec", track.codec},
            {"codecTag", track.codecTag},
            {"sampleFormat", track.sampleFormat},
            {"bitRate", track.bitRate},
            {"sampleRate", track.sampleRate},
            {"channels", track.channels},
            {"channelLayout", track.channelLayout},
            {"durationMillis", track.durationMillis}};
}

template <typename Record>
json toJsonList(const std::vector<Record>& records);

json toJson(const CorvantaSdkVideoInformation& file) {
    return {{"path", file.url.path()},
            {"size", file.size},
            {"durationMillis", file.durationMillis},
            {"format", file.format},
            {"videos", toJsonList(file.videos)},
            {"audios", toJsonList(file.audios)},
            {"url", file.url.absoluteString()},
            {"orientation", orientationName(file.orientation)},
            {"videoSize", {{"width", file.videoSize.width}, {"height", file.videoSize.height}}},
            {"videoCodec", file.videoCodec()},
            {"audioCodec", file.audioCodec()},
            {"audioSampleRates", file.audioSampleRates()},
            {"frameRate", file.frameRate().rawValue()},
            {"hasAudio", file.hasAudio()},
            {"rotation", file.rotation()}};
}

template <typename Record>
json toJsonList(const std::vector<Record>& records) {
    json list = json::array();
    for (const Record& record : records) {
        list.push_back(toJson(record));
    }
    return list;
}

std::string seconds(std::int64_t millis) { return fmt::format("{}.{:03} s", millis / 1000, millis % 1000); }

std::string bitRate(std::int64_t bitsPerSecond) {
    return bitsPerSecond == 0 ? "" : fmt::format("  {} kbit/s", bitsPerSecond / 1000);
}

std::string toTable(const CorvantaSdkVideoInformation& file) {
    std::string table = fmt::format("{}\n  {:<9}{}  {}  {} bytes\n", file.url.path(), "file", file.format,
                                    seconds(file.durationMillis), file.size);
    if (!file.videos.empty()) {
        table += fmt::format("  {:<9}{:.0f}x{:.0f} {}\n", "shown", file.videoSize.width,
                             file.videoSize.height, orientationName(file.orientation));
    }
    for (const auto& track : file.videos) {
        table += fmt::format("  #{} {:<6}{} ({}) {}  {}x{}  {} fps  rotation {}  {}{}\n", track.index,
                             "video", track.codec, track.codecTag, track.pixelFormat, track.width,
                             track.height, track.frameRate, track.rotation, seconds(track.durationMillis),
                             bitRate(track.bitRate));
    }
    for (const auto& track : file.audios) {
        table +=
            fmt::format("  #{} {:<6}{} ({}) {}  {} Hz  {} channels {}  {}{}\n", track.index, "audio",
                        track.codec, track.codecTag, track.sampleFormat, track.sampleRate, track.channels,
                        track.channelLayout, seconds(track.durationMillis), bitRate(track.bitRate));
    }
    return table;
}

std::vector<CorvantaSdkVideoInformation> informationOf(Console& console,
                                                       const std::vector<std::string>& paths) {
    const Progress progress(console, "info", paths.size());
    return runInterruptible(CorvantaSdkVideo->getVideosInformation(inputFiles(paths)));
}

void info(Console& console, const std::vector<std::string>& paths) {
    const auto files = informationOf(console, paths);
    std::string tables;
    for (const CorvantaSdkVideoInformation& file : files) {
        tables += toTable(file);
    }
    console.result(toJsonList(files), tables);
}

} // namespace

void addInfoCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("info", "Show what is known of video files");
    const auto paths = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *paths, "Video files")->required()->type_name("FILE");
    command->callback([&chosen, paths] { chosen = [paths](Console& console) { info(console, *paths); }; });
}
