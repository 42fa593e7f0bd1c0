#include "utils/resampler.hpp"

#include <gtest/gtest.h>

namespace {

using TALVO::UTILS::Resampler;

// That the tones are kept is compared with the reference, for some of these.
TEST(Resampler, GivesEveryFrameItsSize) {
    constexpr std::array rates{8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000};
    for (int const inRate : rates)
        for (int const outRate : rates)
            for (int const duration : {10, 20, 30, 40}) {
                if (inRate == outRate)
                    continue;
                SCOPED_TRACE(testing::Message() << inRate << " to " << outRate << ", " << duration << " ms");
                auto const inSize = static_cast<std::size_t>(inRate * duration / 1000);
                auto const outSize = static_cast<std::size_t>(outRate * duration / 1000);
                Resampler resampler(inSize, outSize);
                std::vector<float> const in(inSize, 10000.0f);
                std::vector<float> out;
                for (int frame = 0; frame < 24; ++frame) {
                    ASSERT_GT(resampler.resample(in, out), 0);
                    ASSERT_EQ(out.size(), outSize);
                    ASSERT_LE(resampler.carry(), 64u);
                    EXPECT_EQ(out.front() == 0.0f, frame == 0);
                }
            }
}

} // namespace
