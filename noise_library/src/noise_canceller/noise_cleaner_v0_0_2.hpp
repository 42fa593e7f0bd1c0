#pragma once

#include "noise_canceller/noise_feedback_cleaner.hpp"

namespace TALVO::NOISE_CANCELLER {

/// Version 0.0.2: 0.0.1 with the Vorbis window on both sides.
class NoiseCleaner_v0_0_2 : public NoiseFeedbackCleaner {
  public:
    NoiseCleaner_v0_0_2(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);
};

} // namespace TALVO::NOISE_CANCELLER
