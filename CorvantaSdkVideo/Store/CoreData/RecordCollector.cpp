#include <CorvantaSdkVideo/Store/CoreData/RecordCollector.hpp>

#include <array>
#include <chrono>
#include <cstdint>
#include <utility>

namespace corvanta {

namespace {

LocalVideoRequest::Date date(std::int64_t nanoseconds) {
    return LocalVideoRequest::Date(
        std::chrono::duration_cast<LocalVideoRequest::Date::duration>(std::chrono::nanoseconds(nanoseconds)));
}

constexpr std::uint8_t noDigit = 0xFF;

constexpr auto digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::uint8_t value = 0; value < 16; ++value) {
        values[static_cast<unsigned char>("0123456789abcdef"[value])] = value;
    }
    return values;
}();

// The form that the store writes is read without a branch for each digit: digits are random, and to guess
// them wrong costs more than the rest of the row. Any other form is left to the parser.
std::optional<UUID> readUUID(std::string_view text) {
    constexpr std::array<std::uint8_t, 16> places = {0,  2,  4,  6,  9,  11, 14, 16,
                                                     19, 21, 24, 26, 28, 30, 32, 34};
    if (text.size() != 36) {
        return std::nullopt;
    }
    UUID id;
    unsigned seen = 0;
    for (std::size_t byte = 0; byte < places.size(); ++byte) {
        const unsigned high = digitValues[static_cast<unsigned char>(text[places[byte]])];
        const unsigned low = digitValues[static_cast<unsigned char>(text[places[byte] + 1U])];
        seen |= high | low;
        id.data[byte] = static_cast<std::uint8_t>(high << 4U | low);
    }
    const bool isCanonical =
        seen < 16 && text[8] == '-' && text[13] == '-' && text[18] == '-' && text[23] == '-';
    return isCanonical ? id : parseUUID(text);
}

// The stored URL itself as long as the file is where it says: it may be written in another way.
URL presentURL(URL stored, std::optional<std::string_view> bookmark, FileBookmarkResolver& resolver) {
    const auto path = bookmark ? resolver.resolve(*bookmark) : std::nullopt;
    return path && *path != stored.path() ? URL::fromFilePath(*path) : std::move(stored);
}

} // namespace

// Lists are long and their files lie in few folders: most URLs are made of the last one's folder and a plain
// name, which is many times faster than parsing.
std::optional<URL> RecordCollector::readURL(std::string_view text) {
    const std::string_view folder = text.substr(0, text.rfind('/') + 1);
    if (folder_ && folder == folder_->absoluteString()) {
        URL url = folder_->appendingPathComponent(text.substr(folder.size()));
        if (url.absoluteString() == text) {
            return url;
        }
    } else {
        folder_ = URL::parse(folder);
        // What follows a bare authority would belong to it.
        if (folder_ && folder_->path().empty()) {
            folder_.reset();
        }
    }
    return URL::parse(text);
}

void RecordCollector::add(const ManagedVideoRequest& row) {
    const auto status = LocalVideoRequest::statusWithRawValue(row.status);
    const auto type = LocalVideoRequest::typeWithRawValue(row.type);
    const auto id = readUUID(row.id);
    auto outputPath = readURL(row.outputPath);
    isOpen_ = status && type && id && outputPath;
    if (isOpen_) {
        auto output = storedOutput(*outputPath);
        records_.push_back({*id,
                            *status,
                            presentURL(std::move(*outputPath), row.outputBookmark, resolver_),
                            std::move(output),
                            *type,
                            std::optional<std::string>(row.error),
                            {},
                            std::optional<std::string>(row.rawData),
                            std::optional<std::string>(row.processId),
                            date(row.createdAt),
                            date(row.updatedAt)});
    }
}

void RecordCollector::add(const ManagedVideoRequestInputFile& row) {
    if (!isOpen_) {
        return;
    }
    if (auto path = readURL(row.path)) {
        records_.back().inputFiles.push_back(
            {presentURL(std::move(*path), row.pathBookmark, resolver_), row.index});
    } else {
        records_.pop_back();
        isOpen_ = false;
    }
}

} // namespace corvanta
