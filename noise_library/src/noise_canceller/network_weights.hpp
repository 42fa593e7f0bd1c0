#pragma once

#include "utils/matrix.hpp"
#include "weights/weight.hpp"

#include <cstddef>
#include <vector>

/// The weights of the networks, as references into the weight file. Where a file lacks one, its
/// constructor throws, so that no cleaner is built for a file that doesn't fit its version.
namespace TALVO::NOISE_CANCELLER {

struct LayerWeights {
    explicit LayerWeights(WEIGHTS::Weight const& weight);

    std::vector<CONTAINERS::Matrix> const& weight_wl;
    std::vector<CONTAINERS::Matrix> const& weight_wnl;
    std::vector<std::vector<float>> const& weight_bl;
    std::vector<std::vector<float>> const& weight_bnl;
};

struct FeedForwardWeights : LayerWeights {
    explicit FeedForwardWeights(WEIGHTS::Weight const& weight);

    std::vector<std::vector<float>> const& weight_headenMultiplier;
    std::vector<std::vector<float>> const& weight_headenReducer;
};

struct RecurrentWeights : LayerWeights {
    explicit RecurrentWeights(WEIGHTS::Weight const& weight);

    std::size_t stateSize; ///< rows of the output layer
};

struct GatedWeights : RecurrentWeights {
    explicit GatedWeights(WEIGHTS::Weight const& weight);

    CONTAINERS::Matrix const& weight_wgru;
    std::vector<float> const& weight_bgru;
};

struct LayernormWeights : GatedWeights {
    explicit LayernormWeights(WEIGHTS::Weight const& weight);

    std::vector<std::vector<float>> const& weight_biasLinearNorm;
    std::vector<std::vector<float>> const& weight_biasNonLinearNorm;
    std::vector<std::vector<float>> const& weight_gainLinearNorm;
    std::vector<std::vector<float>> const& weight_gainNonLinearNorm;
    CONTAINERS::Matrix const& weight_wgruReset;
    std::vector<float> const& weight_bgruReset;
};

} // namespace TALVO::NOISE_CANCELLER
