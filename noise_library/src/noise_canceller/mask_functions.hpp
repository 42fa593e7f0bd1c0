#pragma once

#include "noise_canceller/cleaner_params.hpp"
#include "noise_canceller/feature_functions.hpp"
#include "utils/noise.hpp"

#include <vector>

/// What is made of the network's mask.
namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

/// Widens the mask of the filter range to all bins; those outside are cut to zero.
void calcRMAddNulles(std::vector<float>& inOut, ModelParams const& params);

/// Near x below about 0.05, going over into x^2 above it.
void calcRMModify(std::vector<float>& rm);

/// Mixes the last mask in.
void calcRMSMooth(std::vector<float>& rm, std::vector<float> const& saved_rm, CleanerParams const& params);

/// Presses values below the threshold down, continuously at the threshold.
void applyRMThreshold(std::vector<float>& rm, CleanerParams const& params);

/// Scales the frame down when its highest sample exceeds the point; a negative peak isn't seen.
void applyClipFix(std::vector<float>& out, CleanerParams const& params);

/// What the mask took away becomes the next frame of the noise estimate. `frame` is working room.
void calcNoiseAddToNoise(std::vector<float> const& rm, Spectrum const& spectrum, UTILS::Noise& noise,
                         std::vector<float>& frame, ModelParams const& params);

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
