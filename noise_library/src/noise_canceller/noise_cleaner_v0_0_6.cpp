#include "noise_canceller/noise_cleaner_v0_0_6.hpp"

#include "utils/assertion.hpp"
#include "utils/vector_functions.hpp"

#include <numeric>

namespace TALVO::NOISE_CANCELLER {
namespace {

CleanerParams readParams(WEIGHTS::Model& model, std::size_t inputFrameDuration) {
    CleanerParams params(*model.first, inputFrameDuration);
    SettingReader const reader(model, "NIMBA_", "_v0_0_6");
    params.settings.readGated(reader);
    params.settings.readCompressRate(reader);
    params.fitCompressRate();
    params.settings.backgroundSpeaker.read(reader);
    params.logFloor = model.first->getReference<float>("LpsEps");
    shareVorbisWindow(params, model);
    return params;
}

/// Mean to zero, root mean square to one, then the learned gain and bias.
void normaliseLayer(std::vector<float>& x, std::vector<float> const& gain, std::vector<float> const& bias) {
    double const sum = std::accumulate(x.begin(), x.end(), 0.0);
    auto const mean = static_cast<float>(sum / static_cast<double>(x.size()));
    for (float& value : x)
        value -= mean;
    float const rms = UTIL_FUNCTIONS::vectorRMS(x);
    for (float& value : x)
        value /= rms;
    UTIL_FUNCTIONS::vectorMultVector(x, gain, x);
    UTIL_FUNCTIONS::vectorPlusVector(x, bias, x);
}

} // namespace

NoiseCleaner_v0_0_6::NoiseCleaner_v0_0_6(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : GatedCleaner(model, readParams(*model, inputFrameDuration)), network_(weight()),
      state(network_.stateSize, 0.0f) {
    makeRoom(network_, state);
}

void NoiseCleaner_v0_0_6::calcRMForwardProp_GRU_Layernorm(std::vector<float>& memory,
                                                          std::vector<float>& inOut) {
    using namespace NOISE_CLEANER_FUNCTIONS;
    std::size_t const layers = network_.weight_wnl.size() - 1;
    TALVO_ASSERT(listsFit(network_),
                 "params_.weight_wnl.size()-1 <= params_.weight_wl.size() && params_.weight_wnl.size()-1 <= "
                 "params_.weight_bl.size() && params_.weight_wnl.size() == params_.weight_bnl.size() && "
                 "params_.weight_wl.size() == params_.weight_bl.size()");
    TALVO_ASSERT(layers <= network_.weight_gainLinearNorm.size() &&
                     layers <= network_.weight_biasLinearNorm.size() &&
                     layers <= network_.weight_gainNonLinearNorm.size() &&
                     layers <= network_.weight_biasNonLinearNorm.size(),
                 "params_.weight_wnl.size()-1 <= params_.weight_gainLinearNorm.size() && "
                 "params_.weight_wnl.size()-1 <= params_.weight_biasLinearNorm.size() && "
                 "params_.weight_wnl.size()-1 <= params_.weight_gainNonLinearNorm.size() && "
                 "params_.weight_wnl.size()-1 <= params_.weight_biasNonLinearNorm.size()");
    std::vector<float>& templ = buffers_.joined;
    join(memory, inOut, templ);
    TALVO_ASSERT(network_.weight_wgru.rowSize() == templ.size() &&
                     network_.weight_wgru.colSize() == network_.weight_bgru.size(),
                 "params_.weight_wgru.rowSize() == templ.size() && params_.weight_wgru.colSize() == "
                 "params_.weight_bgru.size()");
    applySigmoidLayer(templ, network_.weight_wgru, network_.weight_bgru, buffers_.gate);
    applySigmoidLayer(templ, network_.weight_wgruReset, network_.weight_bgruReset, resetGate_);
    // The state stands at the front of the joined vector; the input behind it is not gated.
    UTIL_FUNCTIONS::vectorMultVector(memory, resetGate_, resetGate_);
    std::copy(resetGate_.begin(), resetGate_.end(), templ.begin());
    std::swap(inOut, templ);

    std::size_t i = 0;
    for (; i < layers; ++i) {
        calcBranches(i, inOut, network_, buffers_);
        normaliseLayer(buffers_.linear, network_.weight_gainLinearNorm[i], network_.weight_biasLinearNorm[i]);
        normaliseLayer(buffers_.nonLinear, network_.weight_gainNonLinearNorm[i],
                       network_.weight_biasNonLinearNorm[i]);
        UTIL_FUNCTIONS::affectV1ByReluAddV2(buffers_.nonLinear, buffers_.linear, inOut);
        if (i == 0) {
            UTIL_FUNCTIONS::vectorSymetricSumWithCoefficient(memory, buffers_.gate, inOut, memory);
            inOut.assign(memory.begin(), memory.end());
        }
    }
    TALVO_ASSERT(i == network_.weight_wnl.size() - 1, "i==params_.weight_wnl.size()-1");
    applyOutputLayer(inOut, inOut, network_, buffers_);
}

} // namespace TALVO::NOISE_CANCELLER
