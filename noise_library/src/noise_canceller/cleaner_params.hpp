#pragma once

#include "noise_canceller/band_functions.hpp"
#include "noise_canceller/model_params.hpp"
#include "noise_canceller/settings.hpp"

#include <memory>

namespace TALVO::NOISE_CANCELLER {

/// Everything that a noise cleaner is built from, beside its network's weights.
struct CleanerParams : ModelParams {
    using ModelParams::ModelParams;

    /// Values that the network sees of one frame.
    std::size_t frameFeatures() const {
        return NOISE_CLEANER_FUNCTIONS::compressedSize(filterRangeEnd - filterRangeStart,
                                                       settings.compressRate);
    }

    /// Counts a compression that the model's sizes don't allow as the default, if they allow that.
    void fitCompressRate();

    Settings settings;
    float logFloor = 0.0f; ///< added to energies before their logarithm
    WindowPtr analysisWindowPtr;
    WindowPtr synthesisWindowPtr;
    std::shared_ptr<UTILS::FFT> fftCalculatorPtr;
};

/// Gives a model whose two windows are one and the same its shared Vorbis window and transform.
void shareVorbisWindow(CleanerParams& params, WEIGHTS::Model& model);

} // namespace TALVO::NOISE_CANCELLER
