#pragma once

#include "noise_canceller/noise_feedback_cleaner.hpp"

namespace TALVO::NOISE_CANCELLER {

/// Version 0.0.1: Hamming analysis window. With the clip fix the mask is applied to the spectrum of
/// the unwindowed frame, and the result gets the synthesis window that the model's settings choose;
/// without it the masked frame goes out as it is.
class NoiseCleaner_v0_0_1 : public NoiseFeedbackCleaner {
  public:
    NoiseCleaner_v0_0_1(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);

  protected:
    void synthesise(float const* frame, std::vector<float>& out) override;

  private:
    std::vector<float> unwindowed_;
};

} // namespace TALVO::NOISE_CANCELLER
