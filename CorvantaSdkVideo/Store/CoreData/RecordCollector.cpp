#include <CorvantaSdkVideo/Store/CoreData/RecordCollector.hpp>

#include <chrono>
#include <utility>

namespace corvanta {

namespace {

LocalVideoRequest::Date date(std::int64_t nanoseconds) {
    return LocalVideoRequest::Date(
        std::chrono::duration_cast<LocalVideoRequest::Date::duration>(std::chrono::nanoseconds(nanoseconds)));
}

// Most stored paths are plain file URLs, and lists are long: those are spared the parser.
std::optional<URL> readURL(std::string_view text) {
    if (text.starts_with("file:///") && text.find('%') == std::string_view::npos) {
        URL plain = URL::fromFilePath(text.substr(std::string_view("file://").size()));
        if (plain.absoluteString() == text) {
            return plain;
        }
    }
    return URL::parse(text);
}

// The stored URL itself as long as the file is where it says: it may be written in another way.
URL presentURL(URL stored, std::optional<std::string_view> bookmark, FileBookmarkResolver& resolver) {
    const auto path = bookmark ? resolver.resolve(*bookmark) : std::nullopt;
    return path && *path != stored.path() ? URL::fromFilePath(*path) : std::move(stored);
}

} // namespace

void RecordCollector::add(const ManagedVideoRequest& row) {
    const auto status = LocalVideoRequest::statusWithRawValue(row.status);
    const auto type = LocalVideoRequest::typeWithRawValue(row.type);
    const auto id = parseUUID(row.id);
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
