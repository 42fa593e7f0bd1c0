#include <CorvantaSdkVideo/Commands/Join/JoinForm.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoFileValidator.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;
using Options = CorvantaSdkVideoJoinOptions;
using Encoding = CorvantaSdkVideoEncoding;

constexpr double leastSide = CorvantaSdkVideoFileValidator::minimumSupportedResolutionDimension;
// What every encoder takes.
constexpr double mostSide = 8190;

// The value that most seconds of the files have; of two that have as many, the larger one.
template <typename Value>
class Likes {
  public:
    void add(const Value& value, double seconds) { seconds_[value] += seconds; }

    std::optional<Value> most() const {
        const auto found = std::ranges::max_element(
            seconds_, {}, [](const auto& entry) { return std::pair(entry.second, entry.first); });
        return found != seconds_.end() ? std::optional(found->first) : std::nullopt;
    }

  private:
    std::map<Value, double> seconds_;
};

double secondsOf(const JoinFile& file) { return static_cast<double>(file.information.durationMillis) / 1000; }

const CodedTrack* firstPicture(const JoinFile& file) {
    const auto found = std::ranges::find(file.tracks, true, &CodedTrack::isPicture);
    return found != file.tracks.end() ? &*found : nullptr;
}

std::int64_t even(double side) { return std::llround(side / 2) * 2; }

std::pair<double, double> sizeAsMost(const std::vector<JoinFile>& files) {
    Likes<std::pair<double, double>> likes;
    for (const JoinFile& file : files) {
        const VideoSize& size = file.information.videoSize;
        if (size.width > 0 && size.height > 0) {
            likes.add({size.width, size.height}, secondsOf(file));
        }
    }
    return likes.most().value_or(std::pair(0.0, 0.0));
}

void setSize(CorvantaSdkVideoJoinInspection& join, const std::vector<JoinFile>& files,
             const Options& options) {
    for (const auto& side : {options.width, options.height}) {
        if (side && static_cast<double>(*side) < leastSide) {
            throw CorvantaSdkVideoFileValidator::tooSmall(static_cast<double>(*side));
        }
    }
    auto [width, height] = sizeAsMost(files);
    if (!(width > 0) && !(options.width && options.height)) {
        return;
    }
    const double shape = width > 0 ? width / height : 1;
    if (options.width || options.height) {
        width = static_cast<double>(options.width.value_or(0));
        height = static_cast<double>(options.height.value_or(0));
        width = width > 0 ? width : height * shape;
        height = height > 0 ? height : width / shape;
    }
    const double larger = std::max(1.0, leastSide / std::min(width, height));
    const double smaller = std::min(1.0, mostSide / (std::max(width, height) * larger));
    join.width = std::max(even(width * larger * smaller), static_cast<std::int64_t>(leastSide));
    join.height = std::max(even(height * larger * smaller), static_cast<std::int64_t>(leastSide));
}

// The rate that shows each picture once where there is one, else as often as the next, else the nearest
// above.
CorvantaSdkVideoFrameRate supportedRate(double rate) {
    using Rate = CorvantaSdkVideoFrameRate;
    constexpr std::array<std::pair<double, Rate::Value>, 5> rates{{{24, Rate::twentyFourFps},
                                                                   {25, Rate::twentyFiveFps},
                                                                   {30, Rate::thirtyFps},
                                                                   {50, Rate::fiftyFps},
                                                                   {60, Rate::sixtyFps}}};
    const auto first = [&](auto fits) {
        const auto found = std::ranges::find_if(rates, fits);
        return found != rates.end() ? std::optional(Rate(found->second)) : std::nullopt;
    };
    constexpr double tolerance = 0.01;
    const auto isMultiple = [&](const auto& entry) {
        const double times = entry.first / rate;
        return times > 1 - tolerance && std::abs(times - std::round(times)) < tolerance * times;
    };
    const auto isAbove = [&](const auto& entry) { return entry.first >= rate; };
    if (const auto exact = first(isMultiple)) {
        return *exact;
    }
    return first(isAbove).value_or(Rate::sixtyFps);
}

CorvantaSdkVideoFrameRate rateAsMost(const std::vector<JoinFile>& files) {
    Likes<double> likes;
    for (const JoinFile& file : files) {
        if (const CodedTrack* picture = firstPicture(file); picture != nullptr && picture->rate > 0) {
            likes.add(picture->rate, secondsOf(file));
        }
    }
    const auto most = likes.most();
    return most ? supportedRate(*most) : CorvantaSdkVideoFrameRate(CorvantaSdkVideoFrameRate::thirtyFps);
}

// ffmpeg's AAC encoder takes no other.
std::int64_t encodableRate(std::int64_t rate) {
    constexpr auto rates = std::to_array<std::int64_t>(
        {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350});
    const auto found = std::ranges::find_if(rates, [rate](std::int64_t known) { return known <= rate; });
    return found != rates.end() ? *found : 0;
}

std::int64_t encodableChannels(std::int64_t channels) {
    return channels >= 8 ? 8 : channels >= 6 ? 6 : channels >= 2 ? 2 : 1;
}

Encoding encodingAsMost(const std::vector<JoinFile>& files) {
    Encoding encoding{.quality = Encoding::Quality::high};
    Likes<std::int64_t> rates;
    Likes<std::int64_t> channels;
    for (const JoinFile& file : files) {
        for (const auto& sound : file.information.audios) {
            rates.add(sound.sampleRate, secondsOf(file));
            channels.add(sound.channels, secondsOf(file));
        }
    }
    if (const std::int64_t rate = encodableRate(rates.most().value_or(0)); rate > 0) {
        encoding.audioSampleRate = rate;
    }
    if (const auto most = channels.most(); most && *most > 0) {
        encoding.audioChannels = encodableChannels(*most);
    }
    return encoding;
}

std::vector<CorvantaSdkVideoInformation> informationOf(const std::vector<JoinFile>& files) {
    std::vector<CorvantaSdkVideoInformation> information;
    for (const JoinFile& file : files) {
        information.push_back(file.information);
    }
    return information;
}

Encoding encodingOf(const std::vector<JoinFile>& files, const Options& options) {
    const auto information = informationOf(files);
    Encoding encoding = options.encoding ? *options.encoding : encodingAsMost(files);
    auto obstacle = obstacleToEncoding(encoding, information);
    if (obstacle && !options.encoding) {
        // What H.264 can't hold.
        encoding.codec = Encoding::Codec::hevc;
        obstacle = obstacleToEncoding(encoding, information);
    }
    if (obstacle) {
        throw Error(Error::mergeFailed, *obstacle);
    }
    return encoding;
}

std::string whyMerged(const std::vector<JoinFile>& files, const Options& options, std::string& extension) {
    if (options.width || options.height) {
        return "a size is asked for";
    }
    if (options.framesRate) {
        return "a frame rate is asked for";
    }
    if (options.encoding) {
        return "an encoding is asked for";
    }
    std::string obstacle = copyObstacle(files);
    if (obstacle.empty()) {
        extension = copyExtension(files.front(), options.fileExtension);
        if (extension.empty()) {
            obstacle = options.fileExtension.value_or("no container") + " doesn't take the codecs of " +
                       files.front().information.url.path();
        }
    }
    return obstacle;
}

} // namespace

CorvantaSdkVideoJoinInspection joinOf(const std::vector<JoinFile>& files, const Options& options) {
    CorvantaSdkVideoJoinInspection join;
    for (const JoinFile& file : files) {
        join.seconds += secondsOf(file);
    }
    join.obstacle = whyMerged(files, options, join.fileExtension);
    if (join.obstacle.empty()) {
        return join;
    }
    join.way = CorvantaSdkVideoJoinWay::merged;
    join.fileExtension = "mp4";
    setSize(join, files, options);
    join.framesRate = options.framesRate ? *options.framesRate : rateAsMost(files);
    join.encoding = encodingOf(files, options);
    return join;
}

} // namespace corvanta
