#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>

#include <CorvantaSdkVideo/Shared/CheckedArithmetic.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/MergeTracks.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace corvanta {

namespace {

// The graph addresses a stream by its position among the streams of its kind, not by its index in the file.
template <typename Stream>
std::ptrdiff_t position(const Stream& stream, const std::vector<Stream>& streams) {
    return std::ranges::find(streams, stream.index, &Stream::index) - streams.begin();
}

// Covers are no tracks, but ffmpeg counts them among the video streams.
std::string videoPosition(const CorvantaSdkVideoTrackInformation& stream,
                          const CorvantaSdkVideoInformation& info) {
    const auto coversBefore =
        std::ranges::count_if(info.covers, [&](std::int64_t cover) { return cover < stream.index; });
    return std::to_string(position(stream, info.videos) + coversBefore);
}

// Fits the picture into the target and centres it on black; -2 makes the other side even.
std::string fitting(const std::string& width, const std::string& height) {
    const std::string isWider = "if(gt(iw/ih," + width + "/" + height + "),";
    return "scale='" + isWider + width + ",-2)':'" + isWider + "-2," + height + ")',pad=" + width + ":" +
           height + ":(ow-iw)/2:(oh-ih)/2,setsar=1";
}

// The segments of one output track, which are numbered through it.
class Segments {
  public:
    explicit Segments(std::string prefix) : prefix_(std::move(prefix)) {}

    // The name of the next segment's label, without brackets.
    std::string next() {
        std::string name = prefix_ + std::to_string(count_++);
        labels_ += "[" + name + "]";
        return name;
    }

    std::string concat(std::string_view kind) const {
        return labels_ + "concat=n=" + std::to_string(count_) + ":" + std::string(kind);
    }

  private:
    std::string prefix_;
    std::string labels_;
    std::size_t count_ = 0;
};

// A stream comes first, then a filler for what it is shorter than its file; a file without one is filler.
template <typename Item, typename AddStream, typename AddFiller>
void addSegments(const std::vector<Item>& items, AddStream addStream, AddFiller addFiller) {
    for (const Item& item : items) {
        std::int64_t missing = item.videoInfo->durationMillis;
        if (item.trackInfo != nullptr) {
            addStream(*item.videoInfo, *item.trackInfo);
            missing = checkedDifference(missing, item.trackInfo->durationMillis);
        }
        if (item.trackInfo == nullptr || missing > 0) {
            addFiller(std::to_string(missing) + "ms");
        }
    }
}

class FilterGraph {
  public:
    FilterGraph(const std::vector<CorvantaSdkVideoInformation>& videosInfo, const MergeForm& form)
        : form_(form) {
        for (std::size_t input = 0; input < videosInfo.size(); ++input) {
            inputs_.try_emplace(videosInfo[input].path, std::to_string(input));
        }
    }

    // Gives the label of the track.
    std::string add(const VideoTrack& track, std::size_t number) {
        const std::string name = "v_track" + std::to_string(number);
        const std::string width = std::to_string(track.width);
        const std::string height = std::to_string(track.height);
        const std::string fit = fitting(width, height);
        Segments segments(name + "_video");
        addSegments(
            track.tracks,
            [&](const auto& info, const auto& stream) {
                addFilter("[" + inputs_.at(info.path) + ":v:" + videoPosition(stream, info) + "]" + fit,
                          segments.next());
            },
            [&](const std::string& duration) {
                addFilter("color=c=black:s=" + width + "x" + height + ":d=" + duration, segments.next());
            });
        const std::string last = number < form_.pictureFilters.size() ? form_.pictureFilters[number] : "";
        return addFilter(segments.concat("v=1:a=0") + last, name);
    }

    std::string add(const AudioTrack& track, std::size_t number) {
        const std::string name = "a_track" + std::to_string(number);
        const std::string rate = std::to_string(form_.sampleRate);
        const std::string format =
            "aformat=sample_fmts=fltp:sample_rates=" + rate + ":channel_layouts=" + form_.channelLayout;
        Segments segments(name + "_audio");
        addSegments(
            track.tracks,
            [&](const auto& info, const auto& stream) {
                addFilter("[" + inputs_.at(info.path) +
                              ":a:" + std::to_string(position(stream, info.audios)) + "]" + format,
                          segments.next());
            },
            [&](const std::string& duration) {
                const std::string segment = segments.next();
                const std::string rest =
                    addFilter("aevalsrc=0:s=" + rate + ":d=" + duration, segment + "_rest");
                addFilter(rest + format, segment);
            });
        return addFilter(segments.concat("v=0:a=1"), name);
    }

    const std::string& text() const { return text_; }

  private:
    std::string addFilter(const std::string& filter, const std::string& outputName) {
        std::string label = "[" + outputName + "]";
        text_ += (text_.empty() ? "" : ";") + filter + label;
        return label;
    }

    // From a path to the number of its first input: a file listed twice is read from there both times.
    std::unordered_map<std::string_view, std::string> inputs_;
    std::string text_;
    const MergeForm& form_;
};

} // namespace

FFMPEGCommand FFMPEGMergeCommandGenerator::generateCommand(
    const std::vector<CorvantaSdkVideoInformation>& videosInfo, std::optional<double> width,
    std::optional<double> height, const std::vector<CorvantaSdkVideoMergeVideoTrack>& videoTracks,
    const std::vector<CorvantaSdkVideoMergeAudioTrack>& audioTracks, CorvantaSdkVideoFrameRate framesRate,
    const std::string& outputPath, const MergeForm& form) const {
    const std::vector<VideoTrack> videos = convertVideoInput(videosInfo, videoTracks, width, height);
    const std::vector<AudioTrack> audios = convertAudioInput(videosInfo, audioTracks);
    if (videos.empty() && audios.empty()) {
        return {};
    }
    FilterGraph graph(videosInfo, form);
    std::string maps;
    for (std::size_t number = 0; number < videos.size(); ++number) {
        maps += "-map \"" + graph.add(videos[number], number) + "\" " + form.pictureOptions + " -r " +
                std::string(framesRate.rawValue()) + " ";
    }
    for (std::size_t number = 0; number < audios.size(); ++number) {
        maps += "-map \"" + graph.add(audios[number], number) + "\" -c:a aac -ar " +
                std::to_string(form.sampleRate) + " -ac " + std::to_string(form.channels) + " ";
    }
    std::string script = "-y " + form.globalOptions;
    for (const CorvantaSdkVideoInformation& info : videosInfo) {
        script += "-i " + ffmpegFormatted(info.path) + " ";
    }
    script += "-filter_complex \"" + graph.text() + "\" " + maps + form.outputOptions + " " +
              ffmpegFormatted(outputPath);
    return {std::move(script), {}};
}

} // namespace corvanta
