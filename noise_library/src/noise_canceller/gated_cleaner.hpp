#pragma once

#include "noise_canceller/spectral_cleaner.hpp"
#include "utils/background_speaker_fix.hpp"

#include <memory>

namespace TALVO::NOISE_CANCELLER {

/// What the versions with gated networks share: log energies of the rescaled, compressed bands, a
/// network that may rest in silence, and a gain and the background speaker fix on the result.
class GatedCleaner : public SpectralCleaner {
  protected:
    GatedCleaner(WEIGHTS::ModelPtr model, CleanerParams params);

    void inputArrived(std::vector<float> const& input) override;
    void calcFeatures(float const* frame) override;
    void calcMask() override;
    void shapeTime(std::vector<float>& time) override;

    /// Turns features_ into the mask of the bands.
    virtual void runNetwork() = 0;
    /// Values in a mask of the bands.
    virtual std::size_t maskSize() const = 0;

  private:
    bool skipNow = false;
    std::unique_ptr<UTILS::BackgroundSpeakerFix> backgroundSpeakerFixPtr_;
};

} // namespace TALVO::NOISE_CANCELLER
