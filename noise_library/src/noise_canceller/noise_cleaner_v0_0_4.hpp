#pragma once

#include "noise_canceller/recurrent_cleaner.hpp"

namespace TALVO::NOISE_CANCELLER {

/// Version 0.0.4: 0.0.3 with the log spectrum compressed into bands.
class NoiseCleaner_v0_0_4 : public RecurrentCleaner {
  public:
    NoiseCleaner_v0_0_4(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);

  protected:
    void compress(std::vector<float>& features) override;
    void expand(std::vector<float>& mask) override;
};

} // namespace TALVO::NOISE_CANCELLER
