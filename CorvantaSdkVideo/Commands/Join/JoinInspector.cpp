#include <CorvantaSdkVideo/Commands/Join/JoinInspector.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/MeasuredLengths.hpp>
#include <platform/Aside.hpp>

#include <algorithm>
#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

namespace corvanta {

namespace {

using Information = std::vector<CorvantaSdkVideoInformation>;

std::vector<std::string> pathsOf(const Information& information) {
    std::vector<std::string> paths;
    for (const CorvantaSdkVideoInformation& file : information) {
        paths.push_back(file.url.path());
    }
    return paths;
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
