// The input is stored rows: a line each, the columns between tabs, an input file's row with less of them.

#include <CorvantaSdkVideo/Store/CoreData/RecordCollector.hpp>

#include <array>
#include <charconv>
#include <cstdlib>

namespace {

std::string_view taken(std::string_view& text, char end) {
    const std::size_t place = std::min(text.find(end), text.size());
    const std::string_view part = text.substr(0, place);
    text.remove_prefix(std::min(place + 1, text.size()));
    return part;
}

std::int64_t number(std::string_view digits) {
    std::int64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    using namespace corvanta;
    FileBookmarkResolver resolver;
    RecordCollector records(resolver);
    std::size_t added = 0;
    for (std::string_view rows(data, size); !rows.empty();) {
        std::string_view row = taken(rows, '\n');
        std::array<std::string_view, 6> column;
        for (std::string_view& value : column) {
            value = taken(row, '\t');
        }
        const auto& [path, index, bookmark, id, type, date] = column;
        const auto optional = bookmark.empty() ? std::nullopt : std::optional(bookmark);
        if (id.empty()) {
            records.add(ManagedVideoRequestInputFile{path, number(index), optional});
        } else {
            records.add(ManagedVideoRequest{id, number(index), path, optional, type, bookmark, type, date,
                                            number(date), number(date)});
            ++added;
        }
    }
    const auto read = records.take();
    if (read.size() > added) {
        std::abort();
    }
    for (const LocalVideoRequest& record : read) {
        if (URL::parse(record.outputPath.absoluteString()) != record.outputPath ||
            !record.output.url("mp4")) {
            std::abort();
        }
    }
    return 0;
}
