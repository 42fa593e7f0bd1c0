#include "noise_canceller/network_weights.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

using Matrices = std::vector<CONTAINERS::Matrix>;
using Vectors = std::vector<std::vector<float>>;

} // namespace

LayerWeights::LayerWeights(WEIGHTS::Weight const& weight)
    : weight_wl(weight.getReference<Matrices>("WeightLinear")),
      weight_wnl(weight.getReference<Matrices>("WeightNonLinear")),
      weight_bl(weight.getReference<Vectors>("BaesLinear")),
      weight_bnl(weight.getReference<Vectors>("BaesNonLinear")) {
    if (weight_wnl.empty() || weight_bnl.empty())
        TALVO_THROW("the network has no output layer");
}

FeedForwardWeights::FeedForwardWeights(WEIGHTS::Weight const& weight)
    : LayerWeights(weight), weight_headenMultiplier(weight.getReference<Vectors>("HeadenMultiplier")),
      weight_headenReducer(weight.getReference<Vectors>("HeadenReducer")) {}

RecurrentWeights::RecurrentWeights(WEIGHTS::Weight const& weight)
    : LayerWeights(weight), stateSize(weight_wnl.back().rowSize()) {}

GatedWeights::GatedWeights(WEIGHTS::Weight const& weight)
    : RecurrentWeights(weight), weight_wgru(weight.getReference<CONTAINERS::Matrix>("WeightGRU")),
      weight_bgru(weight.getReference<std::vector<float>>("BaesGRU")) {}

LayernormWeights::LayernormWeights(WEIGHTS::Weight const& weight)
    : GatedWeights(weight), weight_biasLinearNorm(weight.getReference<Vectors>("BiasLinearNorm")),
      weight_biasNonLinearNorm(weight.getReference<Vectors>("BiasNonLinearNorm")),
      weight_gainLinearNorm(weight.getReference<Vectors>("GainLinearNorm")),
      weight_gainNonLinearNorm(weight.getReference<Vectors>("GainNonLinearNorm")),
      weight_wgruReset(weight.getReference<CONTAINERS::Matrix>("WeightGRU_reset")),
      weight_bgruReset(weight.getReference<std::vector<float>>("BiasGRU_reset")) {}

} // namespace TALVO::NOISE_CANCELLER
