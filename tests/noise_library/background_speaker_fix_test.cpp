#include "utils/background_speaker_fix.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace {

// Its numbers are compared with the reference; here stands what a reference can't show.
TEST(BackgroundSpeakerFix, NeverYieldsANaNWhenItsWindowShrinksToNothing) {
    TALVO::UTILS::BackgroundSpeakerFix fix(1.0f, 2.0f, 3, 0, 0.01f, true, 20, std::vector<float>(4, 1.0f));
    for (int frame = 0; frame < 50; ++frame) {
        std::vector<float> time(4, frame < 20 ? 1000.0f : 1.0f);
        fix.frame_compute(time);
        ASSERT_TRUE(std::isfinite(time[0])) << frame;
    }
}

} // namespace
