#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>
#include <platform/URL.hpp>

#include <optional>
#include <vector>

namespace corvanta {

/// How an edit, or a visit to the editor, ended.
struct CorvantaSdkVideoEditorResult {
    /// Absent if the user left the editor without editing.
    std::optional<URL> editedVideoURL;
    /// How the picture was made.
    CorvantaSdkVideoCutWay cutWay = CorvantaSdkVideoCutWay::copied;
    /// The same of each of the ranges, in their order.
    std::vector<CorvantaSdkVideoCutWay> rangeWays = {};
};

} // namespace corvanta
