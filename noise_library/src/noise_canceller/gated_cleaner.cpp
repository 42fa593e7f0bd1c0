#include "noise_canceller/gated_cleaner.hpp"

#include "noise_canceller/feature_functions.hpp"
#include "utils/vector_functions.hpp"

#include <algorithm>
#include <cmath>

namespace TALVO::NOISE_CANCELLER {

GatedCleaner::GatedCleaner(WEIGHTS::ModelPtr model, CleanerParams params)
    : SpectralCleaner(std::move(model), std::move(params)) {
    BackgroundSpeakerSettings const& fix = params_.settings.backgroundSpeaker;
    if (fix.enabled)
        backgroundSpeakerFixPtr_ = std::make_unique<UTILS::BackgroundSpeakerFix>(
            fix.cutStartDb, fix.cutEndDb, fix.runFrameCount, fix.runMinLen, fix.utteranceLen, fix.varWindMode,
            params_.frameDuration, *params_.analysisWindowPtr);
}

void GatedCleaner::inputArrived(std::vector<float> const& input) {
    constexpr float skipLevel = 0.0f;
    if (params_.settings.skipFrame)
        skipNow = std::ranges::all_of(input, [](float sample) { return std::abs(sample) <= skipLevel; });
}

void GatedCleaner::calcFeatures(float const* frame) {
    features_.clear();
    NOISE_CLEANER_FUNCTIONS::calcRescaleAbsAndFiltr(spectrum_, features_, rescaleFactor(frame), params_);
    NOISE_CLEANER_FUNCTIONS::vectorSizeReducer(features_, params_.settings.compressRate + 1);
    for (float& value : features_)
        value = std::log(value + params_.logFloor);
    normaliseWithHistory();
}

void GatedCleaner::calcMask() {
    if (params_.settings.skipFrame && skipNow)
        features_.assign(maskSize(), 1.0f);
    else
        runNetwork();
    NOISE_CLEANER_FUNCTIONS::vectorSizeEnlarger(features_, params_.settings.compressRate);
}

void GatedCleaner::shapeTime(std::vector<float>& time) {
    if (params_.settings.volumeUp)
        UTIL_FUNCTIONS::vectorMultScalar(time, params_.settings.volumePercent / 100.0f + 1.0f, time);
    if (backgroundSpeakerFixPtr_)
        backgroundSpeakerFixPtr_->frame_compute(time);
}

} // namespace TALVO::NOISE_CANCELLER
