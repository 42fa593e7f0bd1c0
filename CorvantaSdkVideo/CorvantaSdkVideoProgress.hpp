#pragma once

#include <functional>
#include <optional>

namespace corvanta {

/// How far an operation has come.
struct CorvantaSdkVideoProgress {
    enum class Phase {
        /// Files are looked at.
        probing,
        /// In line for a run of ffmpeg: as many as the machine bears go at once.
        waiting,
        running,
        /// All is written; the result gets its place.
        finishing,
    };

    Phase phase = Phase::probing;
    /// Of the whole operation, 0 to 1. Never falls while an operation runs, and is 1 exactly when its result
    /// is there.
    double fraction = 0;
    /// Seconds of the result that are done. Follows the fraction, since some operations go over their
    /// material more than once.
    double secondsDone = 0;
    /// How long the result will be, in seconds; absent as long as nothing is known of it.
    std::optional<double> secondsTotal;
    /// Seconds that are written, or cleaned, in a second; 0 as long as that isn't known.
    double speed = 0;
};

/// Hears how far an operation has come, on whatever thread knows: the one that runs it, or one of the
/// module's. Comes once at a time, the last one before the operation gives its result. Return quickly, and
/// don't throw, which ends the process. A failed operation ends without a fraction of 1.
using CorvantaSdkVideoProgressCallback = std::function<void(const CorvantaSdkVideoProgress&)>;

} // namespace corvanta
