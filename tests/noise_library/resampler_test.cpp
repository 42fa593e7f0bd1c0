#include "utils/resampler.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

using TALVO::UTILS::Resampler;
constexpr double pi = std::numbers::pi;

TEST(Resampler, GivesEveryFrameItsSizeAndKeepsTheTone) {
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
                std::vector<float> in(inSize), out, stream;
                std::uint32_t mostCarried = 0;
                for (std::size_t frame = 0; frame < 24; ++frame) {
                    for (std::size_t i = 0; i < inSize; ++i)
                        in[i] = static_cast<float>(
                            10000.0 *
                            std::sin(2.0 * pi * 1000.0 * static_cast<double>(frame * inSize + i) / inRate));
                    ASSERT_GT(resampler.resample(in, out), 0);
                    ASSERT_EQ(out.size(), outSize);
                    stream.insert(stream.end(), out.begin(), out.end());
                    mostCarried = std::max(mostCarried, resampler.carry());
                }
                EXPECT_EQ(stream.front(), 0.0f);
                EXPECT_LE(mostCarried, 64u);
                // The tone is there at its height, whatever its phase, once the latency has passed.
                double sine = 0.0, cosine = 0.0, power = 0.0;
                std::size_t const begin = stream.size() / 2;
                std::size_t const period = static_cast<std::size_t>(outRate) / 100;
                std::size_t const end = begin + (stream.size() - begin) / period * period;
                for (std::size_t i = begin; i < end; ++i) {
                    double const sample = static_cast<double>(stream[i]);
                    double const phase = 2.0 * pi * 1000.0 * static_cast<double>(i) / outRate;
                    sine += sample * std::sin(phase);
                    cosine += sample * std::cos(phase);
                    power += sample * sample;
                }
                double const count = static_cast<double>(end - begin);
                double const height = 2.0 * std::hypot(sine, cosine) / count;
                EXPECT_NEAR(height, 10000.0, 100.0);
                EXPECT_NEAR(power / count, height * height / 2.0, 1e-3 * height * height);
            }
}

} // namespace
