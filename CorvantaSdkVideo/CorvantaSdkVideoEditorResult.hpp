#pragma once

#include <platform/URL.hpp>

#include <optional>

namespace corvanta {

/// How an edit, or a visit to the editor, ended.
struct CorvantaSdkVideoEditorResult {
    /// Absent if the user left the editor without editing.
    std::optional<URL> editedVideoURL;
};

} // namespace corvanta
