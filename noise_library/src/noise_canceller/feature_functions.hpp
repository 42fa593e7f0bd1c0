#pragma once

#include "noise_canceller/model_params.hpp"
#include "utils/cyclic_block_data.hpp"
#include "utils/noise.hpp"

#include <complex>
#include <vector>

/// What the network sees of a frame.
namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

using Spectrum = std::vector<std::complex<float>>;

/// Appends the squared magnitudes of the filter range, scaled before they are squared.
void calcRescaleAbsAndFiltr(Spectrum const& data, std::vector<float>& out, float scale,
                            ModelParams const& params);

/// Appends log(|X| * scale + 1) of the filter range.
void calcRescaleLogAbsPlus1(Spectrum const& data, std::vector<float>& out, float scale,
                            ModelParams const& params);

/// Writes log(|X| + 1) over an output as long as the filter range.
void calcLogAbsPlus1(Spectrum const& data, std::vector<float>& out, ModelParams const& params);

/// The whole history, each frame normalised by the same MU and SD.
void calcMinusMUDivSD(std::vector<float>& out, CONTAINERS::CyclicBlockData const& frames,
                      ModelParams const& params);

/// The history and the noise mean behind it, normalised element by element.
void calcMinusMUDivSD(std::vector<float>& out, CONTAINERS::CyclicBlockData const& frames,
                      UTILS::Noise const& noise, ModelParams const& params);

/// One frame in place, SD being a variance, to which the floor is added.
void calcMinusMUDivSD(std::vector<float>& inOut, ModelParams const& params, float varianceFloor);

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
