#include "noise_library/support/library_scope.hpp"

#include <fstream>
#include <gmock/gmock.h>

namespace {

using namespace noise_test;

long residentPages() {
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return resident;
}

TEST(LongStreams, TenHoursWithoutGrowthOrDrift) {
    LibraryScope const library;
    ModelShape shape;
    shape.sampleRate = 8000;
    shape.frameLength = 160;
    shape.stateSize = 8;
    shape.hiddenLayers = 1;
    shape.previewFrames = 1;
    ASSERT_EQ(library.setModel("small", makeModel("0.0.5", shape)), 0);
    constexpr int in = 44100;
    constexpr int out = 12000;
    void* const session = openCleaning(in, out, 40, "small");
    auto const inSize = static_cast<unsigned>(in / 25);
    auto const outSize = static_cast<unsigned>(out / 25);
    std::vector<float> const speech = makeSpeech(in, 4.0);
    std::vector<float> result(outSize);
    // The same second of sound once an hour must come out at the same place: a drift would move it.
    std::vector<float> first;
    long pages = 0;
    constexpr int framesAnHour = 3600 * 25;
    for (int frame = 0; frame < 10 * framesAnHour; ++frame) {
        std::size_t const at = static_cast<std::size_t>(frame % 100) * inSize;
        ASSERT_EQ(
            talvoAudioNcCleanAmbientNoiseFloat(session, speech.data() + at, inSize, result.data(), outSize),
            0);
        if (frame % framesAnHour != framesAnHour - 1)
            continue;
        if (first.empty()) {
            first = result;
            pages = residentPages();
        }
        for (std::size_t i = 0; i < result.size(); ++i)
            ASSERT_NEAR(result[i], first[i], 1e-3f) << "hour " << frame / framesAnHour + 1;
    }
    EXPECT_LT(residentPages() - pages, (1 << 20) / sysconf(_SC_PAGESIZE));
    EXPECT_EQ(talvoAudioNcCloseSession(session), 0);
}

} // namespace
