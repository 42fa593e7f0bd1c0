#include <CorvantaSdkVideo/NoiseCancellation/CleaningProgress.hpp>

namespace corvanta {

namespace {

// What each step costs beside the cleaning, as measured with 1080p.
constexpr double cleaningCost = 1;
constexpr double extractionCost = 0.3;
constexpr double copyingCost = 0.6;
constexpr double encodingCost = 30;

} // namespace

CleaningProgress::CleaningProgress(const CorvantaSdkVideoProgressCallback& callback, double seconds)
    : meter_(callback ? std::make_shared<ProgressMeter>(callback) : nullptr), seconds_(seconds) {
    if (meter_) {
        meter_->setTotal(seconds);
    }
}

void CleaningProgress::extracts(bool copiesPicture) {
    copiesPicture_ = copiesPicture;
    const double rest = cleaningCost + (copiesPicture ? copyingCost : encodingCost);
    if (meter_) {
        meter_->beginPart(extractionCost / (extractionCost + rest), seconds_);
    }
}

void CleaningProgress::cleans(double seconds) {
    // What the head didn't state is known now.
    seconds_ = seconds_ > 0 ? seconds_ : seconds;
    cleaningBegan_ = Clock::now();
    const double rest = copiesPicture_ ? copyingCost : encodingCost;
    if (meter_) {
        meter_->setTotal(seconds_);
        meter_->beginPart(cleaningCost / (cleaningCost + rest), seconds);
        meter_->start();
    }
}

void CleaningProgress::hasCleaned(double seconds) {
    const double spent = std::chrono::duration<double>(Clock::now() - cleaningBegan_).count();
    if (meter_) {
        meter_->advance(seconds, spent > 0 ? seconds / spent : 0);
    }
}

void CleaningProgress::writes() {
    if (meter_) {
        meter_->endPart();
        meter_->beginPart(1, seconds_);
    }
}

} // namespace corvanta
