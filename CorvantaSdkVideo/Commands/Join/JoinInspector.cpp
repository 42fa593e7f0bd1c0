#include <CorvantaSdkVideo/Commands/Join/JoinInspector.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <platform/Aside.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <stop_token>
#include <utility>

namespace corvanta {

namespace {

using Information = std::vector<CorvantaSdkVideoInformation>;

// As long as it takes: a file that has to be read through may be a long one. A stop ends it.
constexpr auto patience = std::chrono::hours(24);

std::vector<std::string> pathsOf(const Information& information) {
    std::vector<std::string> paths;
    for (const CorvantaSdkVideoInformation& file : information) {
        paths.push_back(file.url.path());
    }
    return paths;
}

template <typename Tracks>
bool statesLengths(const Tracks& tracks) {
    return std::ranges::all_of(tracks, [](const auto& track) { return track.durationMillis > 0; });
}

bool needsMeasuring(const CorvantaSdkVideoInformation& file) {
    return file.durationMillis <= 0 || !statesLengths(file.videos) || !statesLengths(file.audios);
}

std::int64_t millisOf(double seconds) { return std::llround(std::max(seconds, 0.0) * 1000); }

// A track that has no packets has nothing to be followed by, but is as long as nothing.
template <typename Tracks>
void setLengths(Tracks& tracks, const std::map<int, double>& ends) {
    for (auto& track : tracks) {
        const auto end = ends.find(static_cast<int>(track.index));
        if (track.durationMillis <= 0 && end != ends.end()) {
            track.durationMillis = millisOf(end->second);
        }
    }
}

} // namespace

Task<std::vector<JoinFile>> joinFiles(Information information) {
    information = co_await withMeasuredLengths(std::move(information));
    const auto tracks = std::make_shared<std::vector<std::vector<CodedTrack>>>();
    std::function<void(std::stop_token)> read = [tracks, paths = pathsOf(information)](std::stop_token stop) {
        for (const std::string& path : paths) {
            tracks->push_back(codedTracks(path, {.stop = stop}));
        }
    };
    co_await runAside(std::move(read));
    std::vector<JoinFile> files;
    for (std::size_t index = 0; index < information.size(); ++index) {
        files.push_back({std::move(information[index]), std::move(tracks->at(index))});
    }
    co_return files;
}

Task<Information> withMeasuredLengths(Information information) {
    for (CorvantaSdkVideoInformation& file : information) {
        if (!needsMeasuring(file)) {
            continue;
        }
        const auto ends = std::make_shared<std::map<int, double>>();
        std::function<void(std::stop_token)> read = [ends, path = file.url.path()](std::stop_token stop) {
            const OpenMedia::Options options{.patience = patience, .stop = std::move(stop)};
            *ends = trackEnds(path, options);
        };
        co_await runAside(std::move(read));
        setLengths(file.videos, *ends);
        setLengths(file.audios, *ends);
        double longest = 0;
        for (const auto& [number, end] : *ends) {
            longest = std::max(longest, end);
        }
        if (longest > 0 && isPossibleDuration(longest)) {
            file.durationMillis = millisOf(longest);
        }
    }
    co_return information;
}

Information withoutOverhang(Information information) {
    constexpr std::int64_t mostMillis = 45;
    std::int64_t owed = 0;
    for (CorvantaSdkVideoInformation& file : information) {
        std::int64_t pictures = 0;
        for (const CorvantaSdkVideoTrackInformation& track : file.videos) {
            pictures = std::max(pictures, track.durationMillis);
        }
        const std::int64_t overhang = file.durationMillis - pictures;
        if (pictures <= 0 || overhang <= 0 || overhang > mostMillis) {
            continue;
        }
        owed += overhang;
        const std::int64_t shown = owed > mostMillis ? std::exchange(owed, 0) : 0;
        file.durationMillis = pictures + shown;
        for (CorvantaSdkVideoAudioTrackInformation& track : file.audios) {
            // One that goes over the end needs no silence behind it.
            if (track.durationMillis > pictures) {
                track.durationMillis = std::max(track.durationMillis, file.durationMillis);
            }
        }
    }
    return information;
}

JoinInspector::JoinInspector(VideosInformationGenerator videosInformationGenerator,
                             CorvantaSdkVideoFileValidator videosValidator)
    : videosInformationGenerator_(std::move(videosInformationGenerator)), videosValidator_(videosValidator) {}

Task<CorvantaSdkVideoJoinInspection> JoinInspector::inspect(std::vector<URL> videos,
                                                            CorvantaSdkVideoJoinOptions options) const {
    Logger::addLog(Event::compareVideo, EventMessage::compare(videos));
    auto information = co_await videosInformationGenerator_.getVideosInformation(videos);
    videosValidator_.validateVideosExistence(videos, 2);
    const std::vector<JoinFile> files = co_await joinFiles(std::move(information));
    co_return joinOf(files, options);
}

} // namespace corvanta
