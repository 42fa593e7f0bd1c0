#pragma once

#include "noise_canceller/network_weights.hpp"
#include "utils/matrix.hpp"

#include <cstddef>
#include <vector>

/// The networks. A hidden layer has two affine maps side by side, one through a rectifier and one
/// straight, whose results are added; the last entry of the non-linear list is the output layer.
/// Each pass replaces `inOut` by the output, and the recurrent ones update `state`. Sizes that don't fit
/// are assertions.
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
void calcBranches(std::size_t i, std::vector<float> const& x, LayerWeights const& params,
                  PassBuffers& buffers);

/// x becomes layer i of x.
void applyLayer(std::size_t i, std::vector<float>& x, LayerWeights const& params, PassBuffers& buffers);

/// x becomes the sigmoid of an affine map of x.
void applySigmoidLayer(std::vector<float> const& x, CONTAINERS::Matrix const& weight,
                       std::vector<float> const& bias, std::vector<float>& out);

void applyOutputLayer(std::vector<float> const& x, std::vector<float>& out, LayerWeights const& params,
                      PassBuffers& buffers);

void join(std::vector<float> const& first, std::vector<float> const& second, std::vector<float>& out);

/// Feed-forward, each hidden layer followed by a scale and an offset.
void calcRMForwardProp_DNN(std::vector<float>& inOut, FeedForwardWeights const& params, PassBuffers& buffers);

bool listsFit(LayerWeights const& params);

/// Plain recurrence: the memory is the last hidden vector.
void calcRMForwardProp_RNN(std::vector<float>& state, std::vector<float>& inOut, LayerWeights const& params,
                           PassBuffers& buffers);

/// A gated memory in front of a stack, up to the output layer; gives back the layers run.
std::size_t calcGatedLayers(std::vector<float>& state, std::vector<float>& inOut, GatedWeights const& params,
                            PassBuffers& buffers);

/// An update gate only, as in G.-B. Zhou et al., "Minimal gated unit for recurrent neural networks",
/// 2016; the first layer's result is the candidate and goes on ungated.
void calcRMForwardProp_GRU_Modify(std::vector<float>& state, std::vector<float>& inOut,
                                  GatedWeights const& params, PassBuffers& buffers);

/// The same for voice activity, whose linear list is as long as the non-linear one.
void calcRMForwardProp_GRU_VAD_Modify(std::vector<float>& state, std::vector<float>& inOut,
                                      GatedWeights const& params, PassBuffers& buffers);

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
