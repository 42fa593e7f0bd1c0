#include "noise_canceller/forward_pass.hpp"

#include <gtest/gtest.h>

namespace {

using namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS;
using TALVO::CONTAINERS::Matrix;

// The passes are compared with the reference through the interface; here stands what that can't show.

struct PassParams {
    std::vector<Matrix> weight_wl, weight_wnl;
    std::vector<std::vector<float>> weight_bl, weight_bnl, weight_headenMultiplier, weight_headenReducer;
    Matrix weight_wgru{2, 1, {0, 0}};
    std::vector<float> weight_bgru{0};
};

TEST(PassesDeathTest, EndOnSizesThatDontFit) {
    std::vector<float> state{0.5f};
    std::vector<float> two{1, 2};
    std::vector<float> one{1};
    PassParams params;
    params.weight_wnl = {Matrix(2, 1)};
    params.weight_bnl = {{0}};
    EXPECT_DEATH(
        calcRMForwardProp_GRU_Modify(state, two, params),
        "params.weight_wgru.rowSize\\(\\) == inOut.size\\(\\) && params.weight_wgru.colSize\\(\\) == "
        "params.weight_bgru.size\\(\\)");
    EXPECT_DEATH(calcRMForwardProp_GRU_VAD_Modify(state, one, params), "i==params.weight_wl.size\\(\\)-1");
    EXPECT_DEATH(
        calcRMForwardProp_DNN(one, params),
        "params.weight_wl.size\\(\\) == params.weight_wnl.size\\(\\) && params.weight_wl.size\\(\\) == "
        "params.weight_bl.size\\(\\)");
    params.weight_bl = {{0}};
    EXPECT_DEATH(calcRMForwardProp_RNN(state, one, params),
                 "params.weight_wnl.size\\(\\)-1 <= params.weight_wl.size\\(\\)");
    params.weight_wnl.insert(params.weight_wnl.begin(), Matrix(2, 2));
    params.weight_bnl.insert(params.weight_bnl.begin(), {0, 0});
    params.weight_wl = {Matrix(2, 1)};
    EXPECT_DEATH(calcRMForwardProp_RNN(state, one, params), "weight_wnl\\[i\\].colSize");
}

} // namespace
