#pragma once

#include <platform/URL.hpp>

#include <string_view>

namespace corvanta {

class CorvantaSdkVideoUtils {
  public:
    /// The URL of a name with an extension in the documents directory.
    static URL outputURL(std::string_view name, std::string_view fileExtension);

    /// Makes an empty file in place of what has that name. Failures are not reported.
    static void createEmptyFile(const URL& atURL);

    /// Removes the file if it is there. Failures are not reported.
    static void deleteFileIfExists(const URL& atURL);
};

} // namespace corvanta
