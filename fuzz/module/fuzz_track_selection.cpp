// The input is what a user types to select streams. What was read is written and read again.

#include <examples/corvanta_host/TrackSelection.hpp>

#include <cstdlib>
#include <stdexcept>

namespace {

using namespace corvanta;

std::string sizeText(const std::optional<std::int64_t>& width, const std::optional<std::int64_t>& height) {
    const auto side = [](const auto& pixels) { return pixels ? std::to_string(*pixels) : ""; };
    return '@' + side(width) + 'x' + side(height);
}

std::string entriesText(const std::vector<CorvantaSdkVideoMergeMediaEntry>& entries) {
    std::string text;
    for (const auto& entry : entries) {
        text += (text.empty() ? "" : ",") + std::to_string(entry.fileIndex) + ':' +
                std::to_string(entry.entryIndex);
    }
    return text;
}

template <typename Read, typename Write>
void check(const std::string& text, Read read, Write write) {
    try {
        const auto selection = read(text);
        if (!(read(write(selection)) == selection)) {
            std::abort();
        }
    } catch (const std::invalid_argument&) {
        // selects nothing
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    const std::string text(data, size);
    check(text, videoTrackFrom,
          [](const auto& track) { return entriesText(track.tracks) + sizeText(track.width, track.height); });
    check(text, audioTrackFrom, [](const auto& track) { return entriesText(track.tracks); });
    check(text, encodeEntryFrom, [](const auto& entry) {
        return std::to_string(entry.entryIndex) + sizeText(entry.width, entry.height);
    });
    return 0;
}
