#pragma once

#include <platform/URL.hpp>

#include <string>
#include <string_view>

namespace corvanta {

/// An input file. Whether it exists is asked by the operations, not here.
class CorvantaSdkVideoFile {
  public:
    explicit CorvantaSdkVideoFile(URL url);

    /// Reads `path` as a URL, not as a file path: '?', '#' and percent escapes have their URL meaning. For
    /// arbitrary file names use `CorvantaSdkVideoFile(URL::fromFilePath(path))`. Throws `invalidFile` if the
    /// text is no URL.
    explicit CorvantaSdkVideoFile(std::string_view path);

    const URL& url() const { return url_; }

    /// Without the dot; empty if there is none.
    std::string fileExtension() const { return url_.pathExtension(); }

  private:
    URL url_;
};

} // namespace corvanta
