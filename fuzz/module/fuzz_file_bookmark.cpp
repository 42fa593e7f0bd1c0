// The input is the stored bytes of a bookmark.

#include <platform/FileBookmark.hpp>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    if (const auto path = corvanta::FileBookmarkResolver().resolve({data, size});
        path && !path->starts_with('/')) {
        std::abort();
    }
    return 0;
}
