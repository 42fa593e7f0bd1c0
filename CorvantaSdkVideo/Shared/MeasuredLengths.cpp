#include <CorvantaSdkVideo/Shared/MeasuredLengths.hpp>

#include <platform/Aside.hpp>
#include <platform/CodedTracks.hpp>

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

} // namespace corvanta
