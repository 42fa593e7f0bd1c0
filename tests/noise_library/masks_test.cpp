#include "noise_canceller/band_functions.hpp"
#include "noise_canceller/feature_functions.hpp"
#include "noise_canceller/mask_functions.hpp"
#include "utils/background_speaker_fix.hpp"
#include "utils/en_threshold.hpp"
#include "utils/mean_energy.hpp"
#include "utils/noise.hpp"

#include <cmath>
#include <gmock/gmock.h>

namespace {

// The numbers are compared with the reference through the interface; here stands what that can't show.

using namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS;
using namespace TALVO::UTILS;
using testing::ElementsAre;

struct Params {
    std::size_t filterRangeStart = 1;
    std::size_t filterRangeEnd = 3;
    std::size_t coefficientNumber = 4;
    std::vector<float> weight_MU{1, 2};
    std::vector<float> weight_SD{2, 4};
    float varianceFloor = 0.0f;
};

TEST(Bands, AreSummedOrAveragedInWideningGroupsAndSpreadAgain) {
    std::vector<float> data{1, 2, 3, 4, 5, 6, 7, 8};
    vectorSizeReducer(data, 2);
    EXPECT_THAT(data, ElementsAre(1, 2, 3, 4, 11, 15));
    data = {1, 2, 3, 4, 5, 6, 7, 8};
    vectorSizeReducer(data, 3);
    EXPECT_THAT(data, ElementsAre(1, 2, 7, 26));
    vectorSizeEnlarger(data, 2);
    EXPECT_THAT(data, ElementsAre(1, 2, 7, 7, 26, 26, 26, 26));
    data = {1, 2, 3, 4, 5, 6, 7, 8};
    vectorSizeReducerMean(data, 3);
    EXPECT_THAT(data, ElementsAre(1, 2, 3.5f, 6.5f));
    data = {9, 1, 2, 3, 4, 5, 6, 7, 8};
    vectorSizeReducerMean(data, 3);
    EXPECT_THAT(data, ElementsAre(9, 1, 2, 3.5f, 6.5f));

    std::vector<float> odd(9);
    EXPECT_DEATH(vectorSizeReducer(odd, 2), "data.size\\(\\)%twoexpcoef==0");
    EXPECT_DEATH(vectorSizeEnlarger(odd, 2), "data.size\\(\\)%\\(2\\+rate\\)==0");
    std::vector<float> ten(10);
    EXPECT_DEATH(vectorSizeReducerMean(ten, 3), "\\(data.size\\(\\)-1\\)%twoexpcoef==0");
}

TEST(MaskFunctionsDeathTest, EndOnSizesThatDontFit) {
    Params const params;
    std::vector<float> out(4);
    EXPECT_DEATH(calcRescaleAbsAndFiltr({{1, 1}}, out, 1.0f, params),
                 "data.size\\(\\)>=params.filterRangeEnd");
    EXPECT_DEATH(calcMinusMUDivSD(out, params), "params.weight_MU.size\\(\\) == inOut.size\\(\\)");
    EXPECT_DEATH(calcRMAddNulles(out, params),
                 "inOut.size\\(\\)== params.filterRangeEnd-params.filterRangeStart");
    Noise noise(1, 2);
    EXPECT_DEATH(noise.addFrameNoise(nullptr, 2), "frame != NULL");
    EXPECT_DEATH(noise.addFrameNoise(out.data(), 1), "size==blockSize_");
}

TEST(EnThreshold, ClosesOnWhatIsFarBelowTheLongAverage) {
    EnThreshold gate(2, 3, 10.0f);
    auto const gainAfter = [&gate](float amplitude) {
        gate.setCurrentData({amplitude, -amplitude});
        return gate.gain();
    };
    EXPECT_EQ(gainAfter(1.0f), 1.0f) << "nothing loud yet";
    EXPECT_EQ(gainAfter(std::sqrt(19.0f)), 1.0f) << "a part of 9.5 isn't loud";
    // One loud frame in a list of three: long average 6000, so that the gate works from 75 to 400.
    std::vector<float> rm{0.5f, 0.25f};
    EXPECT_EQ(gainAfter(std::sqrt(6000.0f)), 1.0f);
    gate.applyEnThreshold(rm);
    EXPECT_THAT(rm, ElementsAre(0.5f, 0.25f));
    EXPECT_EQ(gainAfter(0.0f), 1.0f) << "the short list still holds the loud frame";
    EXPECT_EQ(gainAfter(0.0f), 0.0f);
    gate.applyEnThreshold(rm);
    EXPECT_THAT(rm, ElementsAre(0, 0));
    // 400 in one of two frames: a part of 200 is loud, long average (6000 + 400) / 2 = 3200.
    float const upper = 3200.0f / 15.0f;
    float const lower = 3200.0f / 80.0f;
    EXPECT_NEAR(gainAfter(20.0f), std::pow((200.0f - lower) / (upper - lower), 2.0f), 1e-5f);
    EXPECT_DEATH(gate.setCurrentData({1.0f}), "mixData.size\\(\\)>1");
    rm.resize(1);
    EXPECT_DEATH(gate.applyEnThreshold(rm), "rm.size\\(\\)>1");
}

TEST(MeanEnergy, FollowsLoudFramesOnly) {
    MeanEnergy mean(3, 100.0f, 4.0);
    auto const after = [&mean](float amplitude) {
        std::vector<float> const frame{amplitude, -amplitude};
        return mean.setCurrentData(frame.data(), frame.size());
    };
    EXPECT_EQ(after(9.0f), 4.0);
    EXPECT_EQ(mean.valueCount(), 1u);
    EXPECT_EQ(after(10.0f), 52.0);
    EXPECT_EQ(after(20.0f), 168.0);
    EXPECT_EQ(after(10.0f), 200.0) << "the initial value is the first to be overwritten";
    EXPECT_EQ(after(10.0f), 200.0);
    EXPECT_EQ(after(10.0f), 100.0);
    float const one = 1.0f;
    EXPECT_DEATH(mean.setCurrentData(&one, 1), "dataSize > 1");
}

TEST(BackgroundSpeakerFix, NeverYieldsANaNWhenItsWindowShrinksToNothing) {
    BackgroundSpeakerFix fix(1.0f, 2.0f, 3, 0, 0.01f, true, 20, std::vector<float>(4, 1.0f));
    for (int frame = 0; frame < 50; ++frame) {
        std::vector<float> time(4, frame < 20 ? 1000.0f : 1.0f);
        fix.frame_compute(time);
        ASSERT_TRUE(std::isfinite(time[0])) << frame;
    }
}

} // namespace
