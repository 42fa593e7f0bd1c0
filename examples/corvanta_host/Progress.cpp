#include "Progress.hpp"

#include <platform/FFmpegKit.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>
#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

using namespace corvanta;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int widestBar = 30;
constexpr int narrowestBar = 5;
constexpr int usualColumns = 80;

// What an estimate from less would say changes by hours at each step.
constexpr double leastShareForEstimate = 0.01;
constexpr double leastSecondsForEstimate = 1;
constexpr double longestEstimate = 100 * 3600.0;

std::string clockTime(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::llround(seconds));
    return whole < 3600 ? fmt::format("{}:{:02}", whole / 60, whole % 60)
                        : fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::size_t columns() {
    winsize size{};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    // The last column is left to the cursor.
    return static_cast<std::size_t>(isKnown ? size.ws_col : usualColumns) - 1;
}

std::string timeLeft(double spent, double share) {
    if (share < leastShareForEstimate || spent < leastSecondsForEstimate ||
        spent / share - spent > longestEstimate) {
        return "";
    }
    return fmt::format(" {} left", clockTime(spent / share - spent));
}

std::string bar(double share, int width) {
    const int filled = static_cast<int>(share * width);
    return fmt::format(" [{:=<{}}{: <{}}]", "", filled, "", width - filled);
}

} // namespace

/// Shared with the callbacks, which come on other threads and may come late.
class Progress::Display {
  public:
    Display(const Console& console, std::string label, std::size_t fileCount)
        : onTerminal_(console.drawsProgress()), isSilent_(!onTerminal_ && !console.printsProgress()),
          label_(std::move(label)), fileCount_(fileCount) {}

    void showTime() {
        const std::lock_guard lock(mutex_);
        if (isDue() && !isTold_) {
            draw(fmt::format("{} {}", label_, clockTime(secondsSince(start_))));
        }
    }

    void show(const CorvantaSdkVideoProgress& progress) {
        using Phase = CorvantaSdkVideoProgress::Phase;
        const std::lock_guard lock(mutex_);
        isTold_ = isTold_ || progress.phase != Phase::probing;
        // What has been begun is seen to end.
        const bool isEnd = progress.fraction == 1 && !closed_ && !isSilent_ && (onTerminal_ || drawn_);
        if (isTold_ && (isDue() || isEnd)) {
            draw(describe(progress.fraction, progress.speed));
            isWhole_ = progress.fraction == 1;
        }
    }

    void showProbe() {
        const std::lock_guard lock(mutex_);
        const std::size_t file = probes_++ % std::max<std::size_t>(fileCount_, 1) + 1;
        if (fileCount_ > 1 && isDue()) {
            draw(fmt::format("{}: reading file {} of {}", label_, file, fileCount_));
        }
    }

    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        if (drawn_ && onTerminal_) {
            fmt::print(stderr, "{}", isWhole_ ? "\n" : "\r\x1b[K");
        }
    }

  private:
    // Plain lines go to logs, where a few are enough.
    bool isDue() const { return !closed_ && !isSilent_ && (onTerminal_ || secondsSince(lastLine_) >= 5); }

    void draw(const std::string& text) {
        lastLine_ = Clock::now();
        fmt::print(stderr, "{}", onTerminal_ ? "\r\x1b[K" + text.substr(0, columns()) : text + '\n');
        drawn_ = true;
    }

    // What finds no place in the line is left out: the bar first, then the speed.
    std::string describe(double share, double outputSpeed) const {
        const double spent = secondsSince(start_);
        const std::string percent = fmt::format(" {:3.0f} %", share * 100);
        const std::string speed = outputSpeed > 0 ? fmt::format(" {:.3g}x", outputSpeed) : "";
        const std::string left = share < 1 ? timeLeft(spent, share) : " in " + clockTime(spent);
        const std::size_t room = onTerminal_ ? columns() : usualColumns;
        const std::size_t taken = label_.size() + percent.size() + speed.size() + left.size() + 3;
        const int width = std::min(widestBar, static_cast<int>(room) - static_cast<int>(taken));
        return label_ + (width >= narrowestBar ? bar(share, width) : "") + percent +
               (taken - 3 <= room ? speed : "") + left;
    }

    const bool onTerminal_;
    const bool isSilent_;
    const std::string label_;
    const std::size_t fileCount_;
    const Clock::time_point start_ = Clock::now();

    std::mutex mutex_;
    Clock::time_point lastLine_ = Clock::now();
    std::size_t probes_ = 0;
    bool isTold_ = false;
    bool drawn_ = false;
    /// The whole bar stands in the last line, and stays there.
    bool isWhole_ = false;
    bool closed_ = false;
};

Progress::Progress(Console& console, std::string label, std::size_t fileCount)
    : console_(console), display_(std::make_shared<Display>(console, std::move(label), fileCount)) {
    FFmpegKitConfig::enableStatisticsCallback(
        [display = display_](const Statistics&) { display->showTime(); });
    console.listenToProbes([display = display_] { display->showProbe(); });
}

CorvantaSdkVideoProgressCallback Progress::listener() const {
    return [display = display_](const CorvantaSdkVideoProgress& progress) { display->show(progress); };
}

CorvantaSdkVideoProgressCallback Progress::listenerToPictures() const {
    return [display = display_](CorvantaSdkVideoProgress progress) {
        progress.speed = 0;
        display->show(progress);
    };
}

Progress::~Progress() {
    FFmpegKitConfig::enableStatisticsCallback(nullptr);
    console_.listenToProbes(nullptr);
    display_->close();
}
