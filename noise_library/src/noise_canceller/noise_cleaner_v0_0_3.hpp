#pragma once

#include "noise_canceller/recurrent_cleaner.hpp"

namespace TALVO::NOISE_CANCELLER {

/// Version 0.0.3: a recurrent network over all bins of the filter range.
class NoiseCleaner_v0_0_3 : public RecurrentCleaner {
  public:
    NoiseCleaner_v0_0_3(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);
};

} // namespace TALVO::NOISE_CANCELLER
