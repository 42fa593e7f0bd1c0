#pragma once

#include "noise_canceller/network_weights.hpp"
#include "noise_canceller/spectral_cleaner.hpp"

namespace TALVO::NOISE_CANCELLER {

/// Versions 0.0.3 and 0.0.4: the log spectrum of the rescaled frame and a plain recurrent network.
class RecurrentCleaner : public SpectralCleaner {
  protected:
    RecurrentCleaner(WEIGHTS::ModelPtr model, CleanerParams params);

    void calcFeatures(float const* frame) override;
    void calcMask() override;

    /// Between the log spectrum and the history, and between the network and the mask.
    virtual void compress(std::vector<float>&) {}
    virtual void expand(std::vector<float>&) {}

  private:
    RecurrentWeights network_;
    std::vector<float> state_;
};

} // namespace TALVO::NOISE_CANCELLER
