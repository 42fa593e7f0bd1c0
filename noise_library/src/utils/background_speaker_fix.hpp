#pragma once

#include <cstddef>
#include <list>
#include <vector>

namespace TALVO::UTILS {

/// Lowers a voice that is weaker than the main speaker's. The reference level follows the energy of
/// the frames while they are near it and stays when only a weak voice is heard.
class BackgroundSpeakerFix {
  public:
    /// `utteranceLen` in seconds, `frameDuration` in milliseconds, `window` the analysis window.
    BackgroundSpeakerFix(float cutStartDb, float cutEndDb, std::size_t runFrameCount, std::size_t runMinLen,
                         float utteranceLen, bool varWindMode, std::size_t frameDuration,
                         std::vector<float> const& window);

    void frame_compute(std::vector<float>& time);

  private:
    double meanOfNewest() const;

    float cutStartDb_;
    float cutEndDb_;
    std::size_t runFrameCount_;
    std::size_t runMinLen_;
    bool varWindMode_;
    std::list<double> ratios_;
    std::size_t windowLen_;
    float level_ = 1.0f;
    float alpha_;
    float maxCutDb_ = -60.0f;
    float windowEnergy_;
};

} // namespace TALVO::UTILS
