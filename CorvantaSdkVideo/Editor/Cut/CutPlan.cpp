#include <CorvantaSdkVideo/Editor/Cut/CutPlan.hpp>

#include <platform/Errors.hpp>

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <utility>

namespace corvanta {

namespace {

using Pictures = std::vector<CodedPicture>;

bool isWithin(const CodedPicture& picture, std::int64_t start, std::int64_t end) {
    return picture.shown && picture.pts >= start && picture.pts < end;
}

std::vector<std::int64_t> shownWithin(std::span<const CodedPicture> pictures, std::int64_t start,
                                      std::int64_t end) {
    std::vector<std::int64_t> shown;
    for (const CodedPicture& picture : pictures) {
        if (isWithin(picture, start, end)) {
            shown.push_back(picture.pts);
        }
    }
    std::ranges::sort(shown);
    return shown;
}

struct Head {
    Pictures pictures;
    std::optional<CodedPicture> entry;
};

// Reads until nothing more can come that is shown before the entry, or before the end if there is no entry.
Head readHead(CodedPictures& pictures, std::int64_t start, std::int64_t end) {
    Head head;
    pictures.seek(start);
    while (const auto picture = pictures.next()) {
        if (picture->dts >= (head.entry ? head.entry->pts : end)) {
            break;
        }
        if (!head.entry && picture->isEntry() && isWithin(*picture, start, end)) {
            head.entry = picture;
        }
        head.pictures.push_back(*picture);
    }
    return head;
}

// From a key picture before the end, or from the entry, until nothing more can come that is shown before the
// end.
Pictures readTail(CodedPictures& pictures, const CodedPicture& entry, std::int64_t end) {
    Pictures tail;
    pictures.seek(std::max(entry.pts, end - 1));
    bool begun = false;
    while (const auto picture = pictures.next()) {
        begun = begun || picture->pts == entry.pts || (picture->isKey() && picture->pts > entry.pts);
        if (begun) {
            tail.push_back(*picture);
        }
        if (picture->dts >= end) {
            break;
        }
    }
    return tail;
}

// How many of the pictures, in decoding order, can be copied such that all that are left are shown later:
// none of the copied ones then refers to one that is left out.
std::size_t closedPrefix(const Pictures& pictures, std::int64_t entry, std::int64_t end) {
    std::vector<std::int64_t> earliestLeft(pictures.size() + 1, std::numeric_limits<std::int64_t>::max());
    for (std::size_t index = pictures.size(); index > 0; --index) {
        const CodedPicture& picture = pictures[index - 1];
        earliestLeft[index - 1] =
            isWithin(picture, entry, end) ? std::min(earliestLeft[index], picture.pts) : earliestLeft[index];
    }
    std::size_t longest = 0;
    std::int64_t latest = std::numeric_limits<std::int64_t>::min();
    for (std::size_t count = 0; count < pictures.size(); ++count) {
        const CodedPicture& picture = pictures[count];
        if (!picture.shown || picture.pts >= end) {
            break;
        }
        latest = std::max(latest, picture.pts);
        if (latest < earliestLeft[count + 1]) {
            longest = count + 1;
        }
    }
    return longest;
}

} // namespace

CutPiece planEncoding(CodedPictures& pictures, std::int64_t start, std::int64_t end) {
    std::int64_t decodeFrom = pictures.ticks(0);
    try {
        pictures.seek(start);
        if (const auto key = pictures.next(); key && key->isKey()) {
            decodeFrom = std::min(key->pts, start);
        }
    } catch (const PlatformError&) {
        // Pictures without times are decoded from the beginning.
    }
    return {.from = start, .to = end, .decodeFrom = decodeFrom};
}

std::vector<std::int64_t> shownTimes(CodedPictures& pictures, std::int64_t start, std::int64_t end) {
    std::vector<std::int64_t> shown;
    pictures.seek(start);
    while (const auto picture = pictures.next()) {
        if (picture->dts >= end) {
            break;
        }
        if (isWithin(*picture, start, end)) {
            shown.push_back(picture->pts);
        }
    }
    std::ranges::sort(shown);
    return shown;
}

CopiedStart copiedStart(CodedPictures& pictures, std::int64_t start, std::int64_t end) {
    CopiedStart copied;
    pictures.seek(start);
    while (const auto picture = pictures.next()) {
        if (picture->isKey() && picture->dts >= start && picture->dts < end) {
            copied.pts = picture->pts;
        } else if (isWithin(*picture, start, end)) {
            copied.loses = true;
        }
        if (copied.pts || picture->dts >= end) {
            break;
        }
    }
    return copied;
}

std::vector<CutPiece> planCut(CodedPictures& pictures, std::int64_t start, std::int64_t end) {
    std::vector<CutPiece> pieces;
    const auto encode = [&](std::int64_t from, std::int64_t to, std::int64_t decodeFrom,
                            std::vector<std::int64_t> shown) {
        if (!shown.empty()) {
            pieces.push_back({.from = from,
                              .to = to,
                              .decodeFrom = std::min(decodeFrom, from),
                              .shown = std::move(shown)});
        }
    };
    const Head head = readHead(pictures, start, end);
    const std::int64_t behindHead = head.entry ? head.entry->pts : end;
    const std::int64_t firstKey = head.pictures.empty() ? start : head.pictures.front().pts;
    encode(start, behindHead, firstKey, shownWithin(head.pictures, start, behindHead));
    if (!head.entry) {
        return pieces;
    }
    const CodedPicture entry = *head.entry;
    const Pictures tail = readTail(pictures, entry, end);
    const std::size_t copied = closedPrefix(tail, entry.pts, end);
    CutPiece copy{.way = CutPiece::Way::copied, .from = entry.pts, .delay = entry.pts - entry.dts};
    if (copied < tail.size()) {
        copy.stop = tail[copied].pts;
    }
    pieces.push_back(std::move(copy));
    auto left = shownWithin(std::span(tail).subspan(copied), entry.pts, end);
    const std::int64_t from = left.empty() ? end : left.front();
    encode(from, end, tail.empty() ? entry.pts : tail.front().pts, std::move(left));
    return pieces;
}

} // namespace corvanta
