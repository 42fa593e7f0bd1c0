#include <CorvantaSdkVideo/Commands/Concat/ConcatDifferences.hpp>

#include <cstddef>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace corvanta {

namespace {

using Information = CorvantaSdkVideoInformation;
using VideoTrack = CorvantaSdkVideoTrackInformation;
using AudioTrack = CorvantaSdkVideoAudioTrackInformation;

template <typename Value>
std::string difference(const Information& reference, const Information& video, const std::string& what,
                       const Value& expected, const Value& found) {
    std::ostringstream text;
    text << "the " << what << " is " << found << " in " << video.url.path() << " and " << expected << " in "
         << reference.url.path();
    return text.str();
}

// Names and values, in the order in which tracks are compared.
auto properties(const VideoTrack& track) {
    return std::tuple(std::pair("width", track.width), std::pair("height", track.height),
                      std::pair("displayed width", track.rotatedWidth),
                      std::pair("displayed height", track.rotatedHeight), std::pair("codec", track.codec),
                      std::pair("codec tag", track.codecTag), std::pair("pixel format", track.pixelFormat),
                      std::pair("frame rate", track.frameRate), std::pair("rotation", track.rotation));
}

auto properties(const AudioTrack& track) {
    return std::tuple(std::pair("codec", track.codec), std::pair("codec tag", track.codecTag),
                      std::pair("sample format", track.sampleFormat),
                      std::pair("sample rate", track.sampleRate), std::pair("channel count", track.channels),
                      std::pair("channel layout", track.channelLayout));
}

template <typename Track>
std::string tracksDifference(const Information& reference, const Information& video, const std::string& kind,
                             const std::vector<Track>& expected, const std::vector<Track>& found) {
    if (expected.size() != found.size()) {
        return difference(reference, video, "number of " + kind + " tracks", expected.size(), found.size());
    }
    std::string first;
    for (std::size_t index = 0; index < expected.size(); ++index) {
        const std::string place = " of " + kind + " track " + std::to_string(index);
        const auto compare = [&](const auto& wanted, const auto& given) {
            if (first.empty() && wanted.second != given.second) {
                first = difference(reference, video, wanted.first + place, wanted.second, given.second);
            }
        };
        std::apply(
            [&](const auto&... wanted) {
                std::apply([&](const auto&... given) { (compare(wanted, given), ...); },
                           properties(found[index]));
            },
            properties(expected[index]));
    }
    return first;
}

} // namespace

std::string formatDifference(const Information& reference, const Information& video) {
    return video.format == reference.format
               ? ""
               : difference(reference, video, "format", reference.format, video.format);
}

std::string videoTracksDifference(const Information& reference, const Information& video) {
    return tracksDifference(reference, video, "video", reference.videos, video.videos);
}

std::string audioTracksDifference(const Information& reference, const Information& video) {
    return tracksDifference(reference, video, "audio", reference.audios, video.audios);
}

} // namespace corvanta
