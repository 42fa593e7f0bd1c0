#include "noise_canceller/mask_functions.hpp"

#include "utils/assertion.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

void calcRMAddNulles(std::vector<float>& inOut, ModelParams const& params) {
    TALVO_ASSERT(inOut.size() == params.filterRangeEnd - params.filterRangeStart,
                 "inOut.size()== params.filterRangeEnd-params.filterRangeStart");
    TALVO_ASSERT(params.filterRangeEnd <= params.coefficientNumber,
                 "params.filterRangeEnd <= params.coefficientNumber");
    inOut.insert(inOut.begin(), params.filterRangeStart, 0.0f);
    inOut.resize(params.coefficientNumber, 0.0f);
}

void calcRMModify(std::vector<float>& rm) {
    for (float& value : rm) {
        auto const x = static_cast<double>(value);
        double const y =
            x / (std::exp((x - 0.05) / 0.05) + 1.0) + x * x / (std::exp((x - 0.05) * -3.0 / 0.05) + 1.0);
        value = static_cast<float>(y);
    }
}

void calcRMSMooth(std::vector<float>& rm, std::vector<float> const& saved_rm, CleanerParams const& params) {
    TALVO_ASSERT(saved_rm.size() == rm.size() && rm.size() == params.coefficientNumber,
                 "saved_rm.size() == rm.size() && rm.size() == params.coefficientNumber");
    float const coef = params.settings.smoothCoef;
    if (coef == 1.0f)
        return;
    for (std::size_t i = 0; i < rm.size(); ++i)
        rm[i] = coef * rm[i] + (1.0f - coef) * saved_rm[i];
}

void applyRMThreshold(std::vector<float>& rm, CleanerParams const& params) {
    TALVO_ASSERT(!rm.empty(), "rm.size()>0");
    float const threshold = params.settings.rmThreshold;
    for (float& x : rm)
        if (x < threshold)
            x = (1.0f / threshold) * x * x;
}

void applyClipFix(std::vector<float>& out, CleanerParams const& params) {
    TALVO_ASSERT(!out.empty(), "out.size()>0");
    float const peak = *std::max_element(out.begin(), out.end());
    float const point = params.settings.clipFixPoint;
    if (peak > point)
        for (float& sample : out)
            sample *= point / peak;
}

void calcNoiseAddToNoise(std::vector<float> const& rm, Spectrum const& spectrum, UTILS::Noise& noise,
                         std::vector<float>& frame, ModelParams const& params) {
    TALVO_ASSERT(rm.size() >= params.filterRangeEnd && spectrum.size() >= params.filterRangeEnd,
                 "rm.size()>=params.filterRangeEnd && spectrum.size()>=params.filterRangeEnd");
    frame.clear();
    for (std::size_t i = params.filterRangeStart; i < params.filterRangeEnd; ++i) {
        float const g = 1.0f - rm[i];
        frame.push_back(std::log(std::hypot(g * spectrum[i].real(), g * spectrum[i].imag()) + 1.0f));
    }
    noise.addFrameNoiseRemoveBack(frame.data(), frame.size());
    noise.calculateNoise();
}

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
