#include <CorvantaSdkVideo/Commands/Concat/ConcatDifferences.hpp>
#include <CorvantaSdkVideo/Commands/Join/JoinForm.hpp>
#include <platform/OutputContainer.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace corvanta {

namespace {

// A container by ffmpeg's name for what it reads, and the extensions under which it is written, the usual one
// first.
struct Container {
    std::string_view format;
    std::vector<std::string_view> extensions;
    // Whether the extensions stand for unlike containers, which don't take all that one of them has.
    bool isFamily = false;

    bool isWritten(std::string_view extension) const {
        return std::ranges::find(extensions, extension) != extensions.end();
    }
};

const std::array<Container, 8> containers{
    {{"mov,mp4,m4a,3gp,3g2,mj2", {"mp4", "mov", "m4v", "m4a", "3gp"}, true},
     {"matroska,webm", {"mkv", "webm", "mka"}, true},
     {"ogg", {"ogv", "ogg", "oga", "opus"}, true},
     {"mpegts", {"ts", "mts", "m2ts"}},
     {"mpeg", {"mpg", "mpeg", "vob"}},
     {"avi", {"avi"}},
     {"flv", {"flv"}},
     {"asf", {"wmv", "asf", "wma"}}}};

constexpr std::string_view withoutTimes = "avi";

std::vector<int> codecsOf(const JoinFile& file) {
    std::vector<int> codecs;
    for (const CodedTrack& track : file.tracks) {
        codecs.push_back(track.codecId);
    }
    return codecs;
}

std::string kindOf(const CodedTrack& track) { return track.isPicture ? "picture" : "sound"; }

// "track 0 is a picture in b.mp4 and a sound in a.mp4"
std::string orderDifference(const JoinFile& reference, const JoinFile& file) {
    const std::string inFiles = " in " + file.information.url.path();
    const std::string& first = reference.information.url.path();
    if (file.tracks.size() != reference.tracks.size()) {
        return "there are " + std::to_string(file.tracks.size()) + " tracks" + inFiles + " and " +
               std::to_string(reference.tracks.size()) + " in " + first;
    }
    for (std::size_t index = 0; index < file.tracks.size(); ++index) {
        const CodedTrack& track = file.tracks[index];
        const CodedTrack& other = reference.tracks[index];
        if (track.number != other.number || track.isPicture != other.isPicture) {
            return "track " + std::to_string(track.number) + inFiles + " is a " + kindOf(track) + " where " +
                   first + " has a " + kindOf(other) + " as track " + std::to_string(other.number);
        }
    }
    return "";
}

std::string codingDifference(const JoinFile& reference, const JoinFile& file) {
    for (std::size_t index = 0; index < file.tracks.size(); ++index) {
        const CodedTrack& track = file.tracks[index];
        const CodedTrack& other = reference.tracks[index];
        const char* what = track.profile != other.profile             ? "the profile"
                           : track.isInterlaced != other.isInterlaced ? "the order of fields"
                           : track.aspectWidth != other.aspectWidth   ? "the shape of pixels"
                           : track.aspectHeight != other.aspectHeight ? "the shape of pixels"
                           : track.parameters != other.parameters     ? "what a decoder is told"
                                                                      : nullptr;
        if (what != nullptr) {
            return std::string(what) + " of track " + std::to_string(track.number) + " differs between " +
                   file.information.url.path() + " and " + reference.information.url.path();
        }
    }
    return "";
}

std::string difference(const JoinFile& reference, const JoinFile& file) {
    const CorvantaSdkVideoInformation& first = reference.information;
    CorvantaSdkVideoInformation other = file.information;
    if (first.format != withoutTimes) {
        for (std::size_t index = 0; index < std::min(first.videos.size(), other.videos.size()); ++index) {
            other.videos[index].frameRate = first.videos[index].frameRate;
        }
    }
    if (other.format != first.format) {
        return formatDifference(first, other);
    }
    if (other.videos != first.videos) {
        return videoTracksDifference(first, other);
    }
    if (other.audios != first.audios) {
        return audioTracksDifference(first, other);
    }
    const std::string order = orderDifference(reference, file);
    return order.empty() ? codingDifference(reference, file) : order;
}

} // namespace

std::string copyExtension(const JoinFile& first, const std::optional<std::string>& wanted) {
    const std::vector<int> codecs = codecsOf(first);
    const auto own = std::ranges::find(containers, first.information.format, &Container::format);
    const auto takes = [&](const std::string& extension) {
        const bool isOwn = own != containers.end() && !own->isFamily && own->isWritten(extension);
        return isOwn || takesCodecs(extension, codecs);
    };
    std::vector<std::string> candidates;
    if (wanted) {
        candidates = {*wanted};
    } else if (own != containers.end()) {
        if (const std::string given = first.information.url.pathExtension(); own->isWritten(given)) {
            candidates.push_back(given);
        }
        candidates.insert(candidates.end(), own->extensions.begin(), own->extensions.end());
    }
    if (!wanted) {
        candidates.emplace_back("mkv");
    }
    const auto taking = std::ranges::find_if(candidates, takes);
    return taking != candidates.end() ? *taking : "";
}

std::string copyObstacle(const std::vector<JoinFile>& files) {
    for (const JoinFile& file : files) {
        if (std::string found = difference(files.front(), file); !found.empty()) {
            return found;
        }
    }
    return "";
}

} // namespace corvanta
