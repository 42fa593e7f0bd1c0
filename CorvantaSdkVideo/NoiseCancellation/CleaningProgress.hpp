#pragma once

#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>

#include <chrono>
#include <memory>

namespace corvanta {

/// The course of one cleaning: extraction, cleaning and writing, each with the share of the time that it
/// usually takes. Without a callback there is no meter, and nothing is told. One thread at a time.
class CleaningProgress {
  public:
    /// `seconds` of video, 0 for an unknown length.
    CleaningProgress(const CorvantaSdkVideoProgressCallback& callback, double seconds);

    /// Null if nobody listens.
    const std::shared_ptr<ProgressMeter>& meter() const { return meter_; }

    /// The steps begin, in this order.
    void extracts(bool copiesPicture);
    void cleans(double seconds);
    void hasCleaned(double seconds);
    void writes();

  private:
    using Clock = std::chrono::steady_clock;

    std::shared_ptr<ProgressMeter> meter_;
    double seconds_;
    bool copiesPicture_ = true;
    Clock::time_point cleaningBegan_ = {};
};

} // namespace corvanta
