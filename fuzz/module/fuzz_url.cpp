// The input is a text that a host takes for a URL, and a path of any bytes.

#include <platform/URL.hpp>

#include <cstdlib>

namespace {

using corvanta::URL;

void check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void useParts(const URL& url) {
    url.scheme();
    url.isFileURL();
    url.pathExtension();
    // Each text that is made must be one that can be read.
    for (const URL& made : {url, url.appendingPathComponent("a b"), url.appendingPathExtension("%")}) {
        const auto again = URL::parse(made.absoluteString());
        check(again && again->path() == made.path());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    const std::string text(data, size);
    corvanta::removingPercentEncoding(text);
    if (const auto url = URL::parse(text)) {
        useParts(*url);
        check(URL::parse(url->absoluteString()) == url);
    }

    std::string path = '/' + text;
    const URL file = URL::fromFilePath(path);
    const auto bare = URL::parse(corvanta::parseablePath(path));
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    check(file.isFileURL() && file.path() == path && URL::parse(file.absoluteString()) == file);
    check(bare && bare->path() == path);
    return 0;
}
