#include "noise_canceller/band_functions.hpp"
#include "noise_canceller/feature_functions.hpp"
#include "noise_canceller/mask_functions.hpp"
#include "utils/background_speaker_fix.hpp"
#include "utils/en_threshold.hpp"
#include "utils/mean_energy.hpp"
#include "utils/noise.hpp"

#include <cmath>
#include <gmock/gmock.h>
#include <numeric>

namespace {

using namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS;
using namespace TALVO::UTILS;
using testing::Each;
using testing::ElementsAre;
using testing::FloatEq;
using testing::FloatNear;
using testing::Pointwise;

struct MaskSettings {
    float smoothCoef = 1.0f;
    float rmThreshold = 0.5f;
    float clipFixPoint = 25000.0f;
};

struct Params {
    std::size_t filterRangeStart = 1;
    std::size_t filterRangeEnd = 3;
    std::size_t coefficientNumber = 4;
    std::vector<float> weight_MU{1, 2};
    std::vector<float> weight_SD{2, 4};
    float varianceFloor = 0.0f;
    MaskSettings settings{};
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

    for (std::size_t rate = 0; rate < 5; ++rate)
        for (std::size_t const size : {32u, 64u, 256u}) {
            std::vector<float> bins(size, 1.0f);
            vectorSizeReducer(bins, rate + 1);
            EXPECT_EQ(bins.size(), compressedSize(size, rate));
            EXPECT_EQ(std::accumulate(bins.begin(), bins.end(), 0.0f), static_cast<float>(size));
            vectorSizeEnlarger(bins, rate);
            EXPECT_EQ(bins.size(), size);
        }
    std::vector<float> odd(9);
    EXPECT_DEATH(vectorSizeReducer(odd, 2), "data.size\\(\\)%twoexpcoef==0");
    EXPECT_DEATH(vectorSizeEnlarger(odd, 2), "data.size\\(\\)%\\(2\\+rate\\)==0");
    std::vector<float> ten(10);
    EXPECT_DEATH(vectorSizeReducerMean(ten, 3), "\\(data.size\\(\\)-1\\)%twoexpcoef==0");
}

TEST(Features, TakeTheFilterRangeOfASpectrum) {
    Params const params;
    Spectrum const spectrum{{9, 9}, {3, 4}, {0, 0}, {9, 9}};
    std::vector<float> out{7};
    calcRescaleAbsAndFiltr(spectrum, out, 2.0f, params);
    EXPECT_THAT(out, ElementsAre(7, 100, 0));
    out.clear();
    calcRescaleLogAbsPlus1(spectrum, out, 2.0f, params);
    EXPECT_THAT(out, Pointwise(FloatEq(), {std::log(11.0f), 0.0f}));
    calcLogAbsPlus1(spectrum, out, params);
    EXPECT_THAT(out, Pointwise(FloatEq(), {std::log(6.0f), 0.0f}));
    EXPECT_DEATH(calcRescaleAbsAndFiltr({{1, 1}}, out, 1.0f, params),
                 "data.size\\(\\)>=params.filterRangeEnd");

    TALVO::CONTAINERS::CyclicBlockData history(20);
    std::vector<float> const frames{1, 2, 5, 10};
    history.push_back(frames.data(), frames.size());
    calcMinusMUDivSD(out, history, params);
    EXPECT_THAT(out, ElementsAre(0, 0, 2, 2));
    Params wide;
    wide.weight_MU.assign(6, 1.0f);
    wide.weight_SD.assign(6, 2.0f);
    calcMinusMUDivSD(out, history, Noise(1, 2), wide);
    EXPECT_THAT(out, ElementsAre(0, 0.5f, 2, 4.5f, -0.5f, -0.5f));
    Params variance;
    variance.weight_SD = {0, 12};
    variance.varianceFloor = 4.0f;
    std::vector<float> single{2, 4};
    calcMinusMUDivSD(single, variance);
    EXPECT_THAT(single, ElementsAre(0.5f, 0.5f));
}

TEST(Masks, AreShaped) {
    Params params;
    std::vector<float> rm{0.5f, 0.25f};
    calcRMAddNulles(rm, params);
    EXPECT_THAT(rm, ElementsAre(0, 0.5f, 0.25f, 0));
    EXPECT_DEATH(calcRMAddNulles(rm, params),
                 "inOut.size\\(\\)== params.filterRangeEnd-params.filterRangeStart");

    rm = {0.25f, 0.5f, 0.9f};
    applyRMThreshold(rm, params);
    EXPECT_THAT(rm, ElementsAre(0.125f, 0.5f, 0.9f));

    rm = {0.0f, 0.01f, 0.5f, 1.0f};
    calcRMModify(rm);
    EXPECT_THAT(rm, Pointwise(FloatNear(1e-4f), {0.0f, 0.0069f, 0.2501f, 1.0f}));

    params.settings.smoothCoef = 0.25f;
    rm = {1, 0, 1, 0};
    calcRMSMooth(rm, {0, 1, 1, 0}, params);
    EXPECT_THAT(rm, ElementsAre(0.25f, 0.75f, 1, 0));

    params.settings.clipFixPoint = 25000.0f;
    std::vector<float> frame{-40000, 20000};
    applyClipFix(frame, params);
    EXPECT_THAT(frame, ElementsAre(-40000, 20000));
    frame = {-40000, 50000};
    applyClipFix(frame, params);
    EXPECT_THAT(frame, ElementsAre(-20000, 25000));
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

TEST(BackgroundSpeakerFix, CutsByTheDistanceToTheLevelWithoutALimit) {
    // With one frame in the mean and a level that stays, the distance of silence is that of the level.
    std::vector<float> const window(2, 1.0f);
    auto const gainOfSilence = [&](float levelDb) {
        BackgroundSpeakerFix fix(10.0f, 15.0f, 1, 1, 0.001f, true, 2,
                                 window); // alpha is 0: the level is the mean
        std::vector<float> loud(2, std::sqrt(std::pow(10.0f, levelDb / 10.0f)));
        fix.frame_compute(loud);
        std::vector<float> weak(2, 1e-3f);
        fix.frame_compute(weak);
        return weak[0] / 1e-3f;
    };
    EXPECT_NEAR(gainOfSilence(9.9f), 1.0f, 1e-6f);
    EXPECT_NEAR(std::log10(gainOfSilence(12.5f)), -3.0f, 1e-3f);
    EXPECT_NEAR(std::log10(gainOfSilence(15.0f)), -6.0f, 1e-3f);
    EXPECT_NEAR(std::log10(gainOfSilence(20.0f)), -12.0f, 1e-3f);
}

TEST(BackgroundSpeakerFix, NeverYieldsANaNWhenItsWindowShrinksToNothing) {
    BackgroundSpeakerFix fix(1.0f, 2.0f, 3, 0, 0.01f, true, 20, std::vector<float>(4, 1.0f));
    for (int frame = 0; frame < 50; ++frame) {
        std::vector<float> time(4, frame < 20 ? 1000.0f : 1.0f);
        fix.frame_compute(time);
        ASSERT_TRUE(std::isfinite(time[0])) << frame;
    }
}

TEST(Noise, IsTheMeanOfItsLastFrames) {
    Noise noise(2, 2);
    noise.addNullFrameNoise();
    noise.addNullFrameNoise();
    std::vector<std::vector<float>> const frames{{2, 4}, {6, 8}, {10, 0}};
    for (auto const& frame : frames) {
        noise.addFrameNoiseRemoveBack(frame.data(), frame.size());
        noise.calculateNoise();
    }
    EXPECT_THAT(noise.getNoise(), ElementsAre(8, 4));
    noise.addNullFrameNoiseRemoveBack();
    noise.calculateNoise();
    EXPECT_THAT(noise.getNoise(), ElementsAre(5, 0));

    // What the mask took away of the last frame: one half of (6, 8) and nothing of (0, 5).
    Params const params;
    std::vector<float> room;
    Noise fed(1, 2);
    fed.addNullFrameNoise();
    calcNoiseAddToNoise({9, 0.5f, 1, 9}, {{1, 1}, {6, 8}, {0, 5}, {1, 1}}, fed, room, params);
    EXPECT_THAT(fed.getNoise(), Pointwise(FloatEq(), {std::log(6.0f), 0.0f}));
    EXPECT_DEATH(fed.addFrameNoise(nullptr, 2), "frame != NULL");
    EXPECT_DEATH(fed.addFrameNoise(room.data(), 1), "size==blockSize_");
}

} // namespace
