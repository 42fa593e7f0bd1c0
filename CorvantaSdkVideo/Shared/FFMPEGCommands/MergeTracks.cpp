#include <CorvantaSdkVideo/Shared/FFMPEGCommands/MergeTracks.hpp>

#include <CorvantaSdkVideo/Shared/CheckedArithmetic.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace corvanta {

namespace {

struct Size {
    std::int64_t width = 0;
    std::int64_t height = 0;
};

Size calculateMaxSize(const std::vector<std::int64_t>& widths, const std::vector<std::int64_t>& heights,
                      std::optional<std::int64_t> streamMaxWidth,
                      std::optional<std::int64_t> streamMaxHeight) {
    if (streamMaxWidth && streamMaxHeight) {
        return {*streamMaxWidth, *streamMaxHeight};
    }
    if (widths.empty() || heights.empty()) {
        return {};
    }
    const std::int64_t width = std::ranges::max(widths);
    const std::int64_t height = std::ranges::max(heights);
    if (streamMaxWidth) {
        return {*streamMaxWidth, checkedQuotient(checkedProduct(*streamMaxWidth, height), width)};
    }
    if (streamMaxHeight) {
        return {checkedQuotient(checkedProduct(*streamMaxHeight, width), height), *streamMaxHeight};
    }
    return {width, height};
}

VideoTrack makeVideoTrack(std::vector<VideoItem> items, std::optional<std::int64_t> width,
                          std::optional<std::int64_t> height) {
    std::vector<std::int64_t> widths;
    std::vector<std::int64_t> heights;
    for (const VideoItem& item : items) {
        if (item.trackInfo != nullptr) {
            widths.push_back(item.trackInfo->rotatedWidth);
            heights.push_back(item.trackInfo->rotatedHeight);
        }
    }
    const Size size = calculateMaxSize(widths, heights, width, height);
    return {size.width, size.height, std::move(items)};
}

// `streams` names the list of one kind of streams in a file.
template <typename Stream>
using Streams = std::vector<Stream> CorvantaSdkVideoInformation::*;

template <typename Stream>
std::size_t largestTrackCount(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                              Streams<Stream> streams) {
    std::size_t count = 0;
    for (const CorvantaSdkVideoInformation& info : videosInfo) {
        count = std::max(count, (info.*streams).size());
    }
    return count;
}

template <typename Item, typename Stream>
std::vector<Item> itemsOfTrackNumber(std::size_t number,
                                     const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                     Streams<Stream> streams) {
    std::vector<Item> items;
    items.reserve(videosInfo.size());
    for (const CorvantaSdkVideoInformation& info : videosInfo) {
        const std::vector<Stream>& candidates = info.*streams;
        items.push_back({&info, number < candidates.size() ? &candidates[number] : nullptr});
    }
    return items;
}

template <typename Item, typename Stream>
std::vector<Item> selectedItems(const std::vector<CorvantaSdkVideoMergeMediaEntry>& entries,
                                const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                Streams<Stream> streams) {
    std::vector<Item> items;
    items.reserve(entries.size());
    for (const CorvantaSdkVideoMergeMediaEntry& entry : entries) {
        if (!std::in_range<std::size_t>(entry.fileIndex) ||
            static_cast<std::size_t>(entry.fileIndex) >= videosInfo.size()) {
            continue;
        }
        const CorvantaSdkVideoInformation& info = videosInfo[static_cast<std::size_t>(entry.fileIndex)];
        const std::vector<Stream>& candidates = info.*streams;
        const auto found = std::ranges::find(candidates, entry.entryIndex, &Stream::index);
        items.push_back({&info, found != candidates.end() ? &*found : nullptr});
    }
    return items;
}

} // namespace

std::vector<VideoTrack> convertVideoInput(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                          const std::vector<CorvantaSdkVideoMergeVideoTrack>& data,
                                          std::optional<double> width, std::optional<double> height) {
    constexpr auto streams = &CorvantaSdkVideoInformation::videos;
    const auto truncated = [](std::optional<double> side) {
        return side ? std::optional(truncatedToInteger(*side)) : std::nullopt;
    };
    const std::optional<std::int64_t> overallWidth = truncated(width);
    const std::optional<std::int64_t> overallHeight = truncated(height);

    std::vector<VideoTrack> tracks;
    if (data.empty()) {
        const std::size_t count = largestTrackCount(videosInfo, streams);
        for (std::size_t number = 0; number < count; ++number) {
            tracks.push_back(makeVideoTrack(itemsOfTrackNumber<VideoItem>(number, videosInfo, streams),
                                            overallWidth, overallHeight));
        }
    }
    for (const CorvantaSdkVideoMergeVideoTrack& selection : data) {
        auto items = selectedItems<VideoItem>(selection.tracks, videosInfo, streams);
        if (!items.empty()) {
            tracks.push_back(makeVideoTrack(std::move(items),
                                            selection.width ? selection.width : overallWidth,
                                            selection.height ? selection.height : overallHeight));
        }
    }
    return tracks;
}

std::vector<AudioTrack> convertAudioInput(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                          const std::vector<CorvantaSdkVideoMergeAudioTrack>& data) {
    constexpr auto streams = &CorvantaSdkVideoInformation::audios;
    std::vector<AudioTrack> tracks;
    if (data.empty()) {
        const std::size_t count = largestTrackCount(videosInfo, streams);
        for (std::size_t number = 0; number < count; ++number) {
            tracks.push_back({itemsOfTrackNumber<AudioItem>(number, videosInfo, streams)});
        }
    }
    for (const CorvantaSdkVideoMergeAudioTrack& selection : data) {
        auto items = selectedItems<AudioItem>(selection.tracks, videosInfo, streams);
        if (!items.empty()) {
            tracks.push_back({std::move(items)});
        }
    }
    return tracks;
}

} // namespace corvanta
