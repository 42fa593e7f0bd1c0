#include "noise_canceller/recurrent_cleaner.hpp"

#include "noise_canceller/feature_functions.hpp"

namespace TALVO::NOISE_CANCELLER {

RecurrentCleaner::RecurrentCleaner(WEIGHTS::ModelPtr model, CleanerParams params)
    : SpectralCleaner(std::move(model), std::move(params)), network_(weight()),
      state_(network_.stateSize, 0.0f) {
    makeRoom(network_, state_);
}

void RecurrentCleaner::calcFeatures(float const* frame) {
    features_.clear();
    NOISE_CLEANER_FUNCTIONS::calcRescaleLogAbsPlus1(spectrum_, features_, rescaleFactor(frame), params_);
    compress(features_);
    normaliseWithHistory();
}

void RecurrentCleaner::calcMask() {
    NOISE_CLEANER_FUNCTIONS::calcRMForwardProp_RNN(state_, features_, network_, buffers_);
    expand(features_);
}

} // namespace TALVO::NOISE_CANCELLER
