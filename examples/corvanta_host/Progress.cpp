#include "Progress.hpp"

#include <platform/FFmpegKit.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>
#include <utility>

using namespace corvanta;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int barWidth = 30;

std::string clockTime(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::llround(seconds));
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

} // namespace

/// Shared with the statistics callback, which comes on another thread and may come late.
class Progress::Display {
  public:
    Display(bool onTerminal, std::string label, std::optional<std::int64_t> totalMillis)
        : onTerminal_(onTerminal), label_(std::move(label)), totalMillis_(totalMillis) {}

    void show(const Statistics& statistics) {
        const std::lock_guard lock(mutex_);
        // Plain lines go to logs, where a few are enough.
        if (closed_ || (!onTerminal_ && secondsSince(lastLine_) < 5)) {
            return;
        }
        lastLine_ = Clock::now();
        const std::string text = describe(statistics);
        fmt::print(stderr, "{}", onTerminal_ ? "\r\x1b[K" + text : text + '\n');
        drawn_ = true;
    }

    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        if (drawn_ && onTerminal_) {
            fmt::print(stderr, "\r\x1b[K");
        }
    }

  private:
    std::string describe(const Statistics& statistics) const {
        const double spent = secondsSince(start_);
        if (!totalMillis_ || *totalMillis_ <= 0) {
            return fmt::format("{} {}", label_, clockTime(spent));
        }
        const double share = std::clamp(
            static_cast<double>(statistics.timeMillis) / static_cast<double>(*totalMillis_), 0.0, 1.0);
        const int filled = static_cast<int>(share * barWidth);
        const std::string bar = fmt::format("[{:=<{}}{: <{}}]", "", filled, "", barWidth - filled);
        const std::string left = share > 0 ? clockTime(spent / share - spent) : "?";
        return fmt::format("{} {} {:3.0f} % {:.2f}x, {} left", label_, bar, share * 100, statistics.speed,
                           left);
    }

    const bool onTerminal_;
    const std::string label_;
    const std::optional<std::int64_t> totalMillis_;
    const Clock::time_point start_ = Clock::now();

    std::mutex mutex_;
    Clock::time_point lastLine_ = Clock::now();
    bool drawn_ = false;
    bool closed_ = false;
};

Progress::Progress(const Console& console, std::string label, std::optional<std::int64_t> totalMillis)
    : display_(std::make_shared<Display>(console.drawsProgress(), std::move(label), totalMillis)) {
    FFmpegKitConfig::enableStatisticsCallback(
        [display = display_](const Statistics& statistics) { display->show(statistics); });
}

Progress::~Progress() {
    FFmpegKitConfig::enableStatisticsCallback(nullptr);
    display_->close();
}
