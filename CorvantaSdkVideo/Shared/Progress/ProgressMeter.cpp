#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>

#include <algorithm>
#include <utility>

namespace corvanta {

namespace {

// What is left for the step from written to there.
constexpr double mostBeforeTheEnd = 0.99;

constexpr double longestSeconds = 1e10;

} // namespace

ProgressMeter::ProgressMeter(CorvantaSdkVideoProgressCallback callback) : callback_(std::move(callback)) {
    tell();
}

void ProgressMeter::setTotal(double seconds) {
    const std::lock_guard lock(mutex_);
    if (seconds > 0 && seconds <= longestSeconds) {
        progress_.secondsTotal = seconds;
    }
}

void ProgressMeter::beginPart(double share, double seconds) {
    const std::lock_guard lock(mutex_);
    base_ = progress_.fraction;
    share_ = std::clamp(share, 0.0, 1.0) * std::max(0.0, mostBeforeTheEnd - base_);
    seconds_ = seconds;
}

void ProgressMeter::wait() {
    const std::lock_guard lock(mutex_);
    progress_.phase = CorvantaSdkVideoProgress::Phase::waiting;
    progress_.speed = 0;
    tell();
}

void ProgressMeter::start() {
    const std::lock_guard lock(mutex_);
    progress_.phase = CorvantaSdkVideoProgress::Phase::running;
    tell();
}

void ProgressMeter::advance(double seconds, double speed) {
    const std::lock_guard lock(mutex_);
    progress_.phase = CorvantaSdkVideoProgress::Phase::running;
    progress_.speed = speed;
    raise(seconds_ > 0 ? base_ + share_ * std::clamp(seconds / seconds_, 0.0, 1.0) : base_);
    tell();
}

void ProgressMeter::endPart() {
    const std::lock_guard lock(mutex_);
    raise(base_ + share_);
    tell();
}

void ProgressMeter::finish() {
    const std::lock_guard lock(mutex_);
    progress_.phase = CorvantaSdkVideoProgress::Phase::finishing;
    raise(mostBeforeTheEnd);
    tell();
}

void ProgressMeter::complete() {
    const std::lock_guard lock(mutex_);
    progress_.phase = CorvantaSdkVideoProgress::Phase::finishing;
    raise(1);
    tell();
}

void ProgressMeter::raise(double fraction) {
    progress_.fraction = std::max(progress_.fraction, fraction);
    progress_.secondsDone = progress_.fraction * progress_.secondsTotal.value_or(0);
}

void ProgressMeter::tell() {
    if (callback_) {
        callback_(progress_);
    }
}

} // namespace corvanta
