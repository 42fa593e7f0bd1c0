#pragma once

#include "noise_canceller/gated_cleaner.hpp"
#include "noise_canceller/network_weights.hpp"

namespace TALVO::NOISE_CANCELLER {

/// Version 0.0.6: 0.0.5 with normalised layers and a reset gate, and a model's own log floor.
class NoiseCleaner_v0_0_6 : public GatedCleaner {
  public:
    NoiseCleaner_v0_0_6(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);

    /// A gated recurrent unit (K. Cho et al., 2014) in front of layers normalised as in J. Ba et al.,
    /// "Layer normalization", 2016.
    void calcRMForwardProp_GRU_Layernorm(std::vector<float>& memory, std::vector<float>& inOut);

  protected:
    void runNetwork() override { calcRMForwardProp_GRU_Layernorm(state, features_); }
    std::size_t maskSize() const override { return network_.weight_bnl.back().size(); }

  private:
    LayernormWeights network_;
    std::vector<float> state;
    std::vector<float> resetGate_;
};

} // namespace TALVO::NOISE_CANCELLER
