#pragma once

#include "utils/assertion.hpp"
#include "utils/matrix_functions.hpp"
#include "utils/vector_functions.hpp"

#include <cstddef>
#include <utility>
#include <vector>

/// The networks. A hidden layer has two affine maps side by side, one through a rectifier and one
/// straight, whose results are added; the last entry of the non-linear list is the output layer.
/// Each pass replaces `inOut` by the output, and the recurrent ones update `state`. `Params` needs
/// the weights named in a function only; sizes that don't fit are assertions.
namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

/// Working room of the passes, kept by a cleaner so that a frame allocates nothing.
struct PassBuffers {
    std::vector<float> nonLinear;
    std::vector<float> linear;
    std::vector<float> joined;
    std::vector<float> gate;
    /// Whether a frame visits matrices with the same input last to first. Weights outgrow the cache,
    /// which still holds those visited last: by turning every frame some are found there.
    bool turned = false;
};

/// The two branches of layer i, before they are added.
template <class Params>
void calcBranches(std::size_t i, std::vector<float> const& x, Params const& params, PassBuffers& buffers) {
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

/// x becomes layer i of x.
template <class Params>
void applyLayer(std::size_t i, std::vector<float>& x, Params const& params, PassBuffers& buffers) {
    calcBranches(i, x, params, buffers);
    UTIL_FUNCTIONS::affectV1ByReluAddV2(buffers.nonLinear, buffers.linear, x);
}

/// x becomes the sigmoid of an affine map of x.
inline void applySigmoidLayer(std::vector<float> const& x, CONTAINERS::Matrix const& weight,
                              std::vector<float> const& bias, std::vector<float>& out) {
    UTIL_FUNCTIONS::matMulPlusB(x, weight, bias, out);
    UTIL_FUNCTIONS::affectVectorBySigmoid(out, out);
}

template <class Params>
void applyOutputLayer(std::vector<float> const& x, std::vector<float>& out, Params const& params,
                      PassBuffers& buffers) {
    applySigmoidLayer(x, params.weight_wnl.back(), params.weight_bnl.back(), buffers.joined);
    std::swap(out, buffers.joined);
}

inline void join(std::vector<float> const& first, std::vector<float> const& second, std::vector<float>& out) {
    out.assign(first.begin(), first.end());
    out.insert(out.end(), second.begin(), second.end());
}

/// Feed-forward, each hidden layer followed by a scale and an offset.
template <class Params>
void calcRMForwardProp_DNN(std::vector<float>& inOut, Params const& params, PassBuffers& buffers) {
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

template <class Params>
bool listsFit(Params const& params) {
    return !params.weight_wnl.empty() && params.weight_wnl.size() - 1 <= params.weight_wl.size() &&
           params.weight_wnl.size() - 1 <= params.weight_bl.size() &&
           params.weight_wnl.size() == params.weight_bnl.size() &&
           params.weight_wl.size() == params.weight_bl.size();
}

/// Plain recurrence: the memory is the last hidden vector.
template <class Params>
void calcRMForwardProp_RNN(std::vector<float>& state, std::vector<float>& inOut, Params const& params,
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

/// A gated memory in front of a stack, up to the output layer; gives back the layers run.
template <class Params>
std::size_t calcGatedLayers(std::vector<float>& state, std::vector<float>& inOut, Params const& params,
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

/// An update gate only, as in G.-B. Zhou et al., "Minimal gated unit for recurrent neural networks",
/// 2016; the first layer's result is the candidate and goes on ungated.
template <class Params>
void calcRMForwardProp_GRU_Modify(std::vector<float>& state, std::vector<float>& inOut, Params const& params,
                                  PassBuffers& buffers) {
    std::size_t const i = calcGatedLayers(state, inOut, params, buffers);
    TALVO_ASSERT(i == params.weight_wnl.size() - 1, "i==params.weight_wnl.size()-1");
    applyOutputLayer(inOut, inOut, params, buffers);
}

/// The same for voice activity, whose linear list is as long as the non-linear one.
template <class Params>
void calcRMForwardProp_GRU_VAD_Modify(std::vector<float>& state, std::vector<float>& inOut,
                                      Params const& params, PassBuffers& buffers) {
    std::size_t const i = calcGatedLayers(state, inOut, params, buffers);
    TALVO_ASSERT(i == params.weight_wl.size() - 1, "i==params.weight_wl.size()-1");
    applyOutputLayer(inOut, inOut, params, buffers);
}

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
