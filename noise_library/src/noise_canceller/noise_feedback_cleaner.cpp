#include "noise_canceller/noise_feedback_cleaner.hpp"

#include "noise_canceller/feature_functions.hpp"
#include "noise_canceller/mask_functions.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

std::size_t noiseFrames(WEIGHTS::Weight const& weight) {
    constexpr std::size_t most = 1 << 16;
    std::size_t const count = readSize(weight, "NATFrameCount");
    if (count == 0 || count > most)
        TALVO_THROW("the model's noise mean has an impossible length");
    return count;
}

} // namespace

NoiseFeedbackCleaner::NoiseFeedbackCleaner(WEIGHTS::ModelPtr model, CleanerParams params)
    : SpectralCleaner(std::move(model), std::move(params), FillBound::inputFrameAndStep), network_(weight()),
      noise_(noiseFrames(weight()), params_.filterRangeEnd - params_.filterRangeStart) {
    for (std::size_t left = noiseFrames(weight()); left > 0; --left)
        noise_.addNullFrameNoise();
}

void NoiseFeedbackCleaner::calcFeatures(float const*) {
    features_.resize(params_.filterRangeEnd - params_.filterRangeStart);
    NOISE_CLEANER_FUNCTIONS::calcLogAbsPlus1(spectrum_, features_, params_);
    pushFeatures();
    NOISE_CLEANER_FUNCTIONS::calcMinusMUDivSD(features_, framesFutures_, noise_, params_);
}

void NoiseFeedbackCleaner::calcMask() {
    NOISE_CLEANER_FUNCTIONS::calcRMForwardProp_DNN(features_, network_, buffers_);
}

void NoiseFeedbackCleaner::maskReady() {
    NOISE_CLEANER_FUNCTIONS::calcNoiseAddToNoise(saved_rm, spectrum_, noise_, noiseFrame_, params_);
}

} // namespace TALVO::NOISE_CANCELLER
