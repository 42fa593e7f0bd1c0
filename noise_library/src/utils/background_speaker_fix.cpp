#include "utils/background_speaker_fix.hpp"

#include "utils/sliding_list.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace TALVO::UTILS {
namespace {

double sumOfSquares(std::vector<float> const& values) {
    return std::accumulate(values.begin(), values.end(), 0.0, [](double sum, float value) {
        return sum + static_cast<double>(value) * static_cast<double>(value);
    });
}

} // namespace

BackgroundSpeakerFix::BackgroundSpeakerFix(float cutStartDb, float cutEndDb, std::size_t runFrameCount,
                                           std::size_t runMinLen, float utteranceLen, bool varWindMode,
                                           std::size_t frameDuration, std::vector<float> const& window)
    : cutStartDb_(cutStartDb), cutEndDb_(cutEndDb), runFrameCount_(std::max<std::size_t>(runFrameCount, 1)),
      runMinLen_(runMinLen), varWindMode_(varWindMode), ratios_(runFrameCount_, 1.0),
      windowLen_(runFrameCount_),
      alpha_(1.0f / (utteranceLen * -2000.0f / static_cast<float>(frameDuration)) + 1.0f),
      windowEnergy_(static_cast<float>(sumOfSquares(window))) {}

void BackgroundSpeakerFix::frame_compute(std::vector<float>& time) {
    auto const ratio = static_cast<float>(sumOfSquares(time) / static_cast<double>(windowEnergy_));
    slide<double>(ratios_, static_cast<double>(ratio));
    double const mean = meanOfNewest();
    double const d = 10.0 * std::log10(static_cast<double>(level_) / (1.0 + mean));

    double cut = 0.0;
    auto const start = static_cast<double>(cutStartDb_);
    auto const end = static_cast<double>(cutEndDb_);
    if (d >= start)
        cut = (d - start) * static_cast<double>(maxCutDb_) / (end - start);
    if (d < start)
        level_ = static_cast<float>(mean * static_cast<double>(1.0f - alpha_) +
                                    static_cast<double>(level_) * static_cast<double>(alpha_));
    if (varWindMode_) {
        if (d > end && windowLen_ > runMinLen_)
            --windowLen_;
        else if (!(d > end) && windowLen_ < runFrameCount_)
            ++windowLen_;
    }
    auto const factor = static_cast<float>(std::pow(10.0, cut / 10.0));
    for (float& sample : time)
        sample *= factor;
}

double BackgroundSpeakerFix::meanOfNewest() const {
    // The window may have shrunk to nothing; the newest frame counts even then.
    std::size_t const count = std::max<std::size_t>(windowLen_, 1);
    double const sum = std::accumulate(ratios_.rbegin(),
                                       std::next(ratios_.rbegin(), static_cast<std::ptrdiff_t>(count)), 0.0);
    return sum / static_cast<double>(count);
}

} // namespace TALVO::UTILS
