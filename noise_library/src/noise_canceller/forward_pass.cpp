#include "noise_canceller/forward_pass.hpp"

#include "utils/assertion.hpp"
#include "utils/matrix_functions.hpp"
#include "utils/vector_functions.hpp"

#include <utility>

namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

void calcBranches(std::size_t i, std::vector<float> const& x, LayerWeights const& params,
                  PassBuffers& buffers) {
    auto const& nonLinear = params.weight_wnl[i];
    auto const& linear = params.weight_wl[i];
    TALVO_ASSERT(nonLinear.rowSize() == linear.rowSize() && nonLinear.colSize() == linear.colSize(),
                 "params.weight_wnl[i].rowSize() == params.weight_wl[i].rowSize() && "
                 "params.weight_wnl[i].colSize() == params.weight_wl[i].colSize()");
    TALVO_ASSERT(params.weight_bnl[i].size() == params.weight_bl[i].size(),
                 "params.weight_bnl[i].size() == params.weight_bl[i].size()");
    TALVO_ASSERT(x.size() == linear.rowSize(), "inOut.size() == params.weight_wl[i].rowSize()");
    if (buffers.turned)
        UTIL_FUNCTIONS::matMulPlusB(x, linear, params.weight_bl[i], buffers.linear);
    UTIL_FUNCTIONS::matMulPlusB(x, nonLinear, params.weight_bnl[i], buffers.nonLinear);
    if (!buffers.turned)
        UTIL_FUNCTIONS::matMulPlusB(x, linear, params.weight_bl[i], buffers.linear);
}

void applyLayer(std::size_t i, std::vector<float>& x, LayerWeights const& params, PassBuffers& buffers) {
    calcBranches(i, x, params, buffers);
    UTIL_FUNCTIONS::affectV1ByReluAddV2(buffers.nonLinear, buffers.linear, x);
}

void applySigmoidLayer(std::vector<float> const& x, CONTAINERS::Matrix const& weight,
                       std::vector<float> const& bias, std::vector<float>& out) {
    UTIL_FUNCTIONS::matMulPlusB(x, weight, bias, out);
    UTIL_FUNCTIONS::affectVectorBySigmoid(out, out);
}

void applyOutputLayer(std::vector<float> const& x, std::vector<float>& out, LayerWeights const& params,
                      PassBuffers& buffers) {
    applySigmoidLayer(x, params.weight_wnl.back(), params.weight_bnl.back(), buffers.joined);
    std::swap(out, buffers.joined);
}

void join(std::vector<float> const& first, std::vector<float> const& second, std::vector<float>& out) {
    out.assign(first.begin(), first.end());
    out.insert(out.end(), second.begin(), second.end());
}

void calcRMForwardProp_DNN(std::vector<float>& inOut, FeedForwardWeights const& params,
                           PassBuffers& buffers) {
    std::size_t const layers = params.weight_wl.size();
    TALVO_ASSERT(layers != 0 && layers == params.weight_wnl.size() && layers == params.weight_bl.size() &&
                     layers == params.weight_bnl.size() &&
                     params.weight_headenMultiplier.size() == layers - 1 &&
                     params.weight_headenReducer.size() == layers - 1,
                 "params.weight_wl.size() == params.weight_wnl.size() && params.weight_wl.size() == "
                 "params.weight_bl.size() && params.weight_wl.size() == params.weight_bnl.size() && "
                 "params.weight_headenMultiplier.size() == params.weight_wl.size()-1 && "
                 "params.weight_headenReducer.size() == params.weight_wl.size()-1");
    for (std::size_t i = 0; i < layers - 1; ++i) {
        applyLayer(i, inOut, params, buffers);
        UTIL_FUNCTIONS::vectorMultVector(inOut, params.weight_headenMultiplier[i], inOut);
        UTIL_FUNCTIONS::vectorMinusVector(inOut, params.weight_headenReducer[i], inOut);
    }
    applyOutputLayer(inOut, inOut, params, buffers);
}

bool listsFit(LayerWeights const& params) {
    return !params.weight_wnl.empty() && params.weight_wnl.size() - 1 <= params.weight_wl.size() &&
           params.weight_wnl.size() - 1 <= params.weight_bl.size() &&
           params.weight_wnl.size() == params.weight_bnl.size() &&
           params.weight_wl.size() == params.weight_bl.size();
}

void calcRMForwardProp_RNN(std::vector<float>& state, std::vector<float>& inOut, LayerWeights const& params,
                           PassBuffers& buffers) {
    TALVO_ASSERT(listsFit(params),
                 "params.weight_wnl.size()-1 <= params.weight_wl.size() && params.weight_wnl.size()-1 <= "
                 "params.weight_bl.size() && params.weight_wnl.size() == params.weight_bnl.size() && "
                 "params.weight_wl.size() == params.weight_bl.size()");
    join(state, inOut, buffers.joined);
    std::swap(state, buffers.joined);
    std::size_t i = 0;
    for (; i < params.weight_wnl.size() - 1; ++i)
        applyLayer(i, state, params, buffers);
    TALVO_ASSERT(i == params.weight_wnl.size() - 1, "i==params.weight_wnl.size()-1");
    applyOutputLayer(state, inOut, params, buffers);
}

std::size_t calcGatedLayers(std::vector<float>& state, std::vector<float>& inOut, GatedWeights const& params,
                            PassBuffers& buffers) {
    TALVO_ASSERT(listsFit(params),
                 "params.weight_wnl.size()-1 <= params.weight_wl.size() && params.weight_wnl.size()-1 <= "
                 "params.weight_bl.size() && params.weight_wnl.size() == params.weight_bnl.size() && "
                 "params.weight_wl.size() == params.weight_bl.size()");
    join(state, inOut, buffers.joined);
    std::swap(inOut, buffers.joined);
    TALVO_ASSERT(params.weight_wgru.rowSize() == inOut.size() &&
                     params.weight_wgru.colSize() == params.weight_bgru.size(),
                 "params.weight_wgru.rowSize() == inOut.size() && params.weight_wgru.colSize() == "
                 "params.weight_bgru.size()");
    buffers.turned = !buffers.turned;
    if (!buffers.turned)
        applySigmoidLayer(inOut, params.weight_wgru, params.weight_bgru, buffers.gate);
    std::size_t i = 0;
    for (; i < params.weight_wnl.size() - 1; ++i) {
        calcBranches(i, inOut, params, buffers);
        if (i == 0 && buffers.turned)
            applySigmoidLayer(inOut, params.weight_wgru, params.weight_bgru, buffers.gate);
        UTIL_FUNCTIONS::affectV1ByReluAddV2(buffers.nonLinear, buffers.linear, inOut);
        if (i == 0)
            UTIL_FUNCTIONS::vectorSymetricSumWithCoefficient(inOut, buffers.gate, state, state);
    }
    return i;
}

void calcRMForwardProp_GRU_Modify(std::vector<float>& state, std::vector<float>& inOut,
                                  GatedWeights const& params, PassBuffers& buffers) {
    std::size_t const i = calcGatedLayers(state, inOut, params, buffers);
    TALVO_ASSERT(i == params.weight_wnl.size() - 1, "i==params.weight_wnl.size()-1");
    applyOutputLayer(inOut, inOut, params, buffers);
}

void calcRMForwardProp_GRU_VAD_Modify(std::vector<float>& state, std::vector<float>& inOut,
                                      GatedWeights const& params, PassBuffers& buffers) {
    std::size_t const i = calcGatedLayers(state, inOut, params, buffers);
    TALVO_ASSERT(i == params.weight_wl.size() - 1, "i==params.weight_wl.size()-1");
    applyOutputLayer(inOut, inOut, params, buffers);
}

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
