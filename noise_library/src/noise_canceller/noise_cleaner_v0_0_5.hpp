#pragma once

#include "noise_canceller/gated_cleaner.hpp"
#include "noise_canceller/network_weights.hpp"

namespace TALVO::NOISE_CANCELLER {

/// Version 0.0.5: a network with a gated memory.
class NoiseCleaner_v0_0_5 : public GatedCleaner {
  public:
    NoiseCleaner_v0_0_5(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);

  protected:
    void runNetwork() override;
    std::size_t maskSize() const override { return network_.weight_bnl.back().size(); }

  private:
    GatedWeights network_;
    std::vector<float> state;
};

} // namespace TALVO::NOISE_CANCELLER
