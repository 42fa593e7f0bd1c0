#pragma once

#include "utils/assertion.hpp"
#include "utils/cyclic_block_data.hpp"
#include "utils/noise.hpp"

#include <cmath>
#include <complex>
#include <cstddef>
#include <vector>

/// What the network sees of a frame. `Params` needs the fields named in a function only.
namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

using Spectrum = std::vector<std::complex<float>>;

/// Appends the squared magnitudes of the filter range, scaled before they are squared.
template <class Params>
void calcRescaleAbsAndFiltr(Spectrum const& data, std::vector<float>& out, float scale,
                            Params const& params) {
    TALVO_ASSERT(data.size() >= params.filterRangeEnd, "data.size()>=params.filterRangeEnd");
    for (std::size_t i = params.filterRangeStart; i < params.filterRangeEnd; ++i) {
        float const v = std::hypot(data[i].real(), data[i].imag()) * scale;
        out.push_back(v * v);
    }
}

/// Appends log(|X| * scale + 1) of the filter range.
template <class Params>
void calcRescaleLogAbsPlus1(Spectrum const& data, std::vector<float>& out, float scale,
                            Params const& params) {
    TALVO_ASSERT(data.size() >= params.filterRangeEnd, "data.size()>=params.filterRangeEnd");
    for (std::size_t i = params.filterRangeStart; i < params.filterRangeEnd; ++i)
        out.push_back(std::log(std::hypot(data[i].real(), data[i].imag()) * scale + 1.0f));
}

/// Writes log(|X| + 1) over an output as long as the filter range.
template <class Params>
void calcLogAbsPlus1(Spectrum const& data, std::vector<float>& out, Params const& params) {
    TALVO_ASSERT(data.size() >= params.filterRangeEnd, "data.size()>=params.filterRangeEnd");
    TALVO_ASSERT(out.size() == params.filterRangeEnd - params.filterRangeStart,
                 "out.size()==params.filterRangeEnd-params.filterRangeStart");
    for (std::size_t i = params.filterRangeStart; i < params.filterRangeEnd; ++i)
        out[i - params.filterRangeStart] = std::log(std::hypot(data[i].real(), data[i].imag()) + 1.0f);
}

/// The whole history, each frame normalised by the same MU and SD.
template <class Params>
void calcMinusMUDivSD(std::vector<float>& out, CONTAINERS::CyclicBlockData const& frames,
                      Params const& params) {
    TALVO_ASSERT(params.weight_MU.size() == params.weight_SD.size(),
                 "params.weight_MU.size() == params.weight_SD.size()");
    std::size_t const n = params.weight_MU.size();
    TALVO_ASSERT(n != 0 && frames.size() % n == 0, "frames.size() % params.weight_MU.size() == 0");
    out.resize(frames.size());
    for (std::size_t first = 0; first < out.size(); first += n)
        for (std::size_t i = 0; i < n; ++i)
            out[first + i] = (frames.data()[first + i] - params.weight_MU[i]) / params.weight_SD[i];
}

/// The history and the noise mean behind it, normalised element by element.
template <class Params>
void calcMinusMUDivSD(std::vector<float>& out, CONTAINERS::CyclicBlockData const& frames,
                      UTILS::Noise const& noise, Params const& params) {
    TALVO_ASSERT(frames.size() + noise.getNoise().size() == params.weight_MU.size(),
                 "frames.size()+noise.getNoise().size() == params.weight_MU.size()");
    TALVO_ASSERT(params.weight_MU.size() == params.weight_SD.size(),
                 "params.weight_MU.size() == params.weight_SD.size()");
    out.assign(frames.data(), frames.data() + frames.size());
    out.insert(out.end(), noise.getNoise().begin(), noise.getNoise().end());
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = (out[i] - params.weight_MU[i]) / params.weight_SD[i];
}

/// One frame in place, SD being a variance over a floor.
template <class Params>
void calcMinusMUDivSD(std::vector<float>& inOut, Params const& params) {
    TALVO_ASSERT(params.weight_MU.size() == inOut.size(), "params.weight_MU.size() == inOut.size()");
    TALVO_ASSERT(params.weight_MU.size() == params.weight_SD.size(),
                 "params.weight_MU.size() == params.weight_SD.size()");
    for (std::size_t i = 0; i < inOut.size(); ++i)
        inOut[i] = (inOut[i] - params.weight_MU[i]) / std::sqrt(params.weight_SD[i] + params.varianceFloor);
}

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
