#pragma once

#include "noise_canceller/forward_pass.hpp"
#include "noise_canceller/network_weights.hpp"
#include "noise_canceller/overlap_cleaner.hpp"
#include "utils/en_threshold.hpp"
#include "utils/mean_energy.hpp"

#include <complex>
#include <memory>
#include <vector>

namespace TALVO::NOISE_CANCELLER {

/// The chain of stages that a network frame runs through, in the order that all versions keep. A
/// version says what its network sees, runs the network, and may act on the mask and the result.
class SpectralCleaner : public OverlapCleaner {
  public:
    bool mainCleaner(float const* frame, std::vector<float>& out) override;

  protected:
    SpectralCleaner(WEIGHTS::ModelPtr model, CleanerParams params, FillBound fillBound = FillBound::twoSteps);

    /// The state of a stream's start, for the constructor and for a reset.
    void start();

    /// Room for all that a frame works in, which is passed from one vector to the next, so that no frame of a
    /// stream allocates.
    void makeRoom(LayerWeights const& network, std::vector<float>& state);

    /// Puts what the network sees of this frame into features_.
    virtual void calcFeatures(float const* frame) = 0;
    /// Turns features_ into the mask of the filter range.
    virtual void calcMask() = 0;
    /// The mask in saved_rm is final.
    virtual void maskReady() {}
    /// The cleaned frame in the time domain, before it is windowed.
    virtual void shapeTime(std::vector<float>&) {}
    virtual void synthesise(float const* frame, std::vector<float>& out);

    /// The factor that brings a frame to the level the network was trained at; 1 with rescale off.
    float rescaleFactor(float const* frame);
    /// Puts features_ behind the history and normalises the whole history into features_.
    void normaliseWithHistory();
    /// features_ joins the history, the oldest frame leaves it.
    void pushFeatures();
    /// The masked spectrum in the time domain.
    void maskToTime();

    std::vector<float> saved_rm;
    CONTAINERS::CyclicBlockData framesFutures_;

    // Working room, so that a frame allocates nothing.
    std::vector<float> features_;
    std::vector<std::complex<float>> spectrum_;
    std::vector<std::complex<float>> masked_;
    std::vector<float> windowed_;
    std::vector<float> time_;
    NOISE_CLEANER_FUNCTIONS::PassBuffers buffers_;

  private:
    std::size_t historyCapacity() const;
    void shapeMask();

    std::unique_ptr<UTILS::EnThreshold> enTresholdPtr_;
    std::unique_ptr<UTILS::MeanEnergy> meanEnergyPtr_;
};

} // namespace TALVO::NOISE_CANCELLER
