#pragma once

#include "noise_canceller/cleaner_params.hpp"
#include "noise_canceller/noise_cleaner.hpp"
#include "utils/cyclic_block_data.hpp"

#include <cstddef>
#include <vector>

namespace TALVO::NOISE_CANCELLER {

/// The bound that a class sets on the samples waiting for output when a frame comes in.
enum class FillBound { twoSteps, inputFrameAndStep };

/// The stream side of a noise cleaner: gathers network frames of two steps from input frames of any
/// allowed duration, and adds the cleaned ones up with half of each overlapping the next.
class OverlapCleaner : public NoiseCleaner {
  public:
    bool cleanNoise(std::vector<float>& inOutVector) override;
    std::size_t latency() const override;

    /// Milliseconds that the output of a stream begins late, so that every input frame finds enough
    /// output waiting.
    static std::size_t delay(std::size_t frameDuration, std::size_t inputFrameDuration);

  protected:
    OverlapCleaner(WEIGHTS::ModelPtr model, CleanerParams params, FillBound fillBound);

    /// Empties the buffers and fills them with the silence of a stream's start.
    void startStream();

    /// Called with every input frame before its network frames.
    virtual void inputArrived(std::vector<float> const&) {}
    /// One network frame of two steps in the time domain gives as many windowed samples.
    virtual bool mainCleaner(float const* frame, std::vector<float>& out) = 0;

    CleanerParams const params_;

  private:
    FillBound fillBound_;
    CONTAINERS::CyclicBlockData inputData_;
    CONTAINERS::CyclicBlockData outputData_;
};

} // namespace TALVO::NOISE_CANCELLER
