#pragma once

#include <CorvantaSdkVideo/Store/CoreData/ManagedVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>
#include <platform/FileBookmark.hpp>

#include <optional>
#include <string_view>
#include <vector>

namespace corvanta {

/// Makes records of the rows of one fetch, their bookmarks resolved.
class RecordCollector {
  public:
    /// Goes over the bookmarks in one pass of `resolver`, which must outlive the collector.
    explicit RecordCollector(FileBookmarkResolver& resolver) : resolver_(resolver) { resolver_.beginPass(); }

    /// Begins the record of a row. A row whose status or type is unknown, or whose id or a path can't be read
    /// as such, gives none.
    void add(const ManagedVideoRequest& row);
    /// An input file of the row that was added last.
    void add(const ManagedVideoRequestInputFile& row);

    std::vector<LocalVideoRequest> take() { return std::move(records_); }

  private:
    std::optional<URL> readURL(std::string_view text);

    FileBookmarkResolver& resolver_;
    // Of the last URL that was parsed.
    std::optional<URL> folder_;
    std::vector<LocalVideoRequest> records_;
    // Whether the last row has a record.
    bool isOpen_ = false;
};

} // namespace corvanta
