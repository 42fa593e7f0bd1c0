#pragma once

#include "noise_canceller/network_weights.hpp"
#include "noise_canceller/spectral_cleaner.hpp"
#include "utils/noise.hpp"

namespace TALVO::NOISE_CANCELLER {

/// The oldest two versions: a feed-forward network that sees the log spectrum beside a running mean
/// of the noise, which is what the masks of the last frames took away.
class NoiseFeedbackCleaner : public SpectralCleaner {
  protected:
    NoiseFeedbackCleaner(WEIGHTS::ModelPtr model, CleanerParams params);

    void calcFeatures(float const* frame) override;
    void calcMask() override;
    void maskReady() override;

  private:
    FeedForwardWeights network_;
    UTILS::Noise noise_;
    std::vector<float> noiseFrame_;
};

} // namespace TALVO::NOISE_CANCELLER
