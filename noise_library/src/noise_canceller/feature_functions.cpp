#include "noise_canceller/feature_functions.hpp"

#include "utils/assertion.hpp"

#include <cmath>
#include <cstddef>

namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

void calcRescaleAbsAndFiltr(Spectrum const& data, std::vector<float>& out, float scale,
                            ModelParams const& params) {
    TALVO_ASSERT(data.size() >= params.filterRangeEnd, "data.size()>=params.filterRangeEnd");
    for (std::size_t i = params.filterRangeStart; i < params.filterRangeEnd; ++i) {
        float const v = std::hypot(data[i].real(), data[i].imag()) * scale;
        out.push_back(v * v);
    }
}

void calcRescaleLogAbsPlus1(Spectrum const& data, std::vector<float>& out, float scale,
                            ModelParams const& params) {
    TALVO_ASSERT(data.size() >= params.filterRangeEnd, "data.size()>=params.filterRangeEnd");
    for (std::size_t i = params.filterRangeStart; i < params.filterRangeEnd; ++i)
        out.push_back(std::log(std::hypot(data[i].real(), data[i].imag()) * scale + 1.0f));
}

void calcLogAbsPlus1(Spectrum const& data, std::vector<float>& out, ModelParams const& params) {
    TALVO_ASSERT(data.size() >= params.filterRangeEnd, "data.size()>=params.filterRangeEnd");
    TALVO_ASSERT(out.size() == params.filterRangeEnd - params.filterRangeStart,
                 "out.size()==params.filterRangeEnd-params.filterRangeStart");
    for (std::size_t i = params.filterRangeStart; i < params.filterRangeEnd; ++i)
        out[i - params.filterRangeStart] = std::log(std::hypot(data[i].real(), data[i].imag()) + 1.0f);
}

void calcMinusMUDivSD(std::vector<float>& out, CONTAINERS::CyclicBlockData const& frames,
                      ModelParams const& params) {
    TALVO_ASSERT(params.weight_MU.size() == params.weight_SD.size(),
                 "params.weight_MU.size() == params.weight_SD.size()");
    std::size_t const n = params.weight_MU.size();
    TALVO_ASSERT(n != 0 && frames.size() % n == 0, "frames.size() % params.weight_MU.size() == 0");
    out.resize(frames.size());
    for (std::size_t first = 0; first < out.size(); first += n)
        for (std::size_t i = 0; i < n; ++i)
            out[first + i] = (frames.data()[first + i] - params.weight_MU[i]) / params.weight_SD[i];
}

void calcMinusMUDivSD(std::vector<float>& out, CONTAINERS::CyclicBlockData const& frames,
                      UTILS::Noise const& noise, ModelParams const& params) {
    TALVO_ASSERT(frames.size() + noise.getNoise().size() == params.weight_MU.size(),
                 "frames.size()+noise.getNoise().size() == params.weight_MU.size()");
    TALVO_ASSERT(params.weight_MU.size() == params.weight_SD.size(),
                 "params.weight_MU.size() == params.weight_SD.size()");
    out.assign(frames.data(), frames.data() + frames.size());
    out.insert(out.end(), noise.getNoise().begin(), noise.getNoise().end());
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = (out[i] - params.weight_MU[i]) / params.weight_SD[i];
}

void calcMinusMUDivSD(std::vector<float>& inOut, ModelParams const& params, float varianceFloor) {
    TALVO_ASSERT(params.weight_MU.size() == inOut.size(), "params.weight_MU.size() == inOut.size()");
    TALVO_ASSERT(params.weight_MU.size() == params.weight_SD.size(),
                 "params.weight_MU.size() == params.weight_SD.size()");
    for (std::size_t i = 0; i < inOut.size(); ++i)
        inOut[i] = (inOut[i] - params.weight_MU[i]) / std::sqrt(params.weight_SD[i] + varianceFloor);
}

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
