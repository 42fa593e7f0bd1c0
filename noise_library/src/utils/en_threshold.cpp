#include "utils/en_threshold.hpp"

#include "utils/assertion.hpp"
#include "utils/mean_energy.hpp"
#include "utils/sliding_list.hpp"

#include <algorithm>

namespace TALVO::UTILS {

EnThreshold::EnThreshold(std::size_t shortCount, std::size_t longCount, float refEnergy)
    : shortCount_(shortCount), longCount_(longCount), refEnergy_(refEnergy), shortList_(shortCount, 0.0),
      longList_(longCount, 0.0) {}

void EnThreshold::setCurrentData(std::vector<float> const& mixData) {
    TALVO_ASSERT(mixData.size() > 1, "mixData.size()>1");
    double const energy = MeanEnergy::calculateMeanEnergy(mixData.data(), mixData.size());
    double const part = energy / static_cast<double>(shortCount_);
    shortSum_ += part - slide(shortList_, part);
    if (part >= static_cast<double>(refEnergy_)) {
        longFill_ = std::min(longFill_ + 1, longCount_);
        longSum_ += energy - slide(longList_, energy);
    }
    if (longFill_ == 0) {
        gain_ = 1.0f;
        return;
    }
    auto const fill = static_cast<double>(longFill_);
    double const upper = longSum_ / (fill * 15.0);
    double const lower = longSum_ / (fill * 80.0);
    if (shortSum_ >= upper) {
        gain_ = 1.0f;
    } else if (shortSum_ > lower) {
        double const g = (shortSum_ - lower) / (upper - lower);
        gain_ = static_cast<float>(g * g);
    } else {
        gain_ = 0.0f;
    }
}

void EnThreshold::applyEnThreshold(std::vector<float>& rm) const {
    TALVO_ASSERT(rm.size() > 1, "rm.size()>1");
    if (gain_ == 1.0f)
        return;
    if (gain_ == 0.0f)
        std::fill(rm.begin(), rm.end(), 0.0f);
    else
        for (float& value : rm)
            value *= gain_;
}

} // namespace TALVO::UTILS
