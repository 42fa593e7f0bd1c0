#pragma once

#include <string_view>

namespace corvanta {

/// Where a request stands; known to hosts as `CorvantaSdkVideoRequest::Status`. The numbers are those of the
/// stored status, case by case.
enum class CorvantaSdkVideoRequestStatus {
    /// An engine is running ffmpeg for it.
    processing = 0,
    /// The run failed.
    error = 1,
    /// It was cancelled, or found `processing` at start-up.
    cancelled = 2,
    /// The output is there.
    complete = 3,
    /// Built and not run.
    idle = 4,
};

/// The name of the case.
std::string_view name(CorvantaSdkVideoRequestStatus status);

} // namespace corvanta
