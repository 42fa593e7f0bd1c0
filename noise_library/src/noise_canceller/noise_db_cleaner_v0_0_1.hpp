#pragma once

#include "noise_canceller/gated_cleaner.hpp"
#include "noise_canceller/network_weights.hpp"

#include <cstdint>

namespace TALVO::NOISE_CANCELLER {

/// The noise level of a stream, measured with a model of version 0.0.5: what its masks take away.
class NoiseDBCleaner_v0_0_1 : public GatedCleaner {
  public:
    NoiseDBCleaner_v0_0_1(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);

    /// Leaves one value: 10 log10 of the mean square, relative to full scale, of what the masks of
    /// all network frames since the last reset took away; -120 at the lowest.
    bool cleanNoise(std::vector<float>& inOutVector) override;
    bool resetSession() override;

  protected:
    void runNetwork() override;
    std::size_t maskSize() const override { return network_.weight_bnl.back().size(); }
    void maskReady() override;

  private:
    float level() const;

    GatedWeights network_;
    std::vector<float> state;
    double removedSum_ = 0.0;
    std::uint64_t removedFrames_ = 0;
};

} // namespace TALVO::NOISE_CANCELLER
