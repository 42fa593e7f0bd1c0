#include "noise_library/support/allocation_count.hpp"
#include "noise_library/support/library_scope.hpp"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <map>

namespace {

using namespace noise_test;

constexpr std::array rates{8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000};
constexpr std::array versions{"0.0.1", "0.0.2", "0.0.3", "0.0.4", "0.0.5", "0.0.6"};

/// A cleaning session on a float stream.
class Stream {
  public:
    Stream(int inRate, int outRate, int duration, char const* model)
        : session_(talvoAudioNcCreateSession(samplingRate(inRate), samplingRate(outRate),
                                             frameDuration(duration), model)),
          inSize_(static_cast<unsigned>(inRate * duration / 1000)),
          out_(static_cast<std::size_t>(outRate * duration / 1000)) {}
    ~Stream() { EXPECT_EQ(talvoAudioNcCloseSession(session_), 0); }
    Stream(Stream const&) = delete;
    Stream& operator=(Stream const&) = delete;

    std::vector<float> const& clean(float const* in) {
        EXPECT_EQ(talvoAudioNcCleanAmbientNoiseFloat(session_, in, inSize_, out_.data(),
                                                     static_cast<unsigned>(out_.size())),
                  0);
        return out_;
    }
    std::vector<float> cleanAll(std::vector<float> const& in) {
        std::vector<float> all;
        for (std::size_t at = 0; at + inSize_ <= in.size(); at += inSize_) {
            clean(in.data() + at);
            all.insert(all.end(), out_.begin(), out_.end());
        }
        return all;
    }

  private:
    void* session_;
    unsigned inSize_;
    std::vector<float> out_;
};

float peak(std::vector<float> const& samples) {
    auto const [lowest, highest] = std::ranges::minmax(samples);
    return std::max(-lowest, highest);
}

float rms(std::vector<float> const& samples) {
    double sum = 0.0;
    for (float const sample : samples)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return static_cast<float>(std::sqrt(sum / static_cast<double>(samples.size())));
}

/// A network whose mask is one for everything: what comes out is what went in, but for the delay.
ModelFile openModel(ModelShape const& shape) {
    using Matrix = ModelFile::Matrix;
    auto const bands = static_cast<std::size_t>(shape.frameLength / 4);
    std::size_t const state = shape.stateSize;
    std::size_t const joined = state + bands * static_cast<std::size_t>(shape.previewFrames);
    ModelFile model = makeModel("0.0.5", shape);
    model.set("WeightNonLinear", std::vector<Matrix>{Matrix(joined, state), Matrix(state, bands)});
    model.set("BaesNonLinear",
              std::vector<std::vector<float>>{std::vector<float>(state), std::vector(bands, 100.0f)});
    model.set("WeightLinear", std::vector<Matrix>{Matrix(joined, state)});
    model.set("BaesLinear", std::vector<std::vector<float>>{std::vector<float>(state)});
    return model;
}

TEST(Streams, AnOpenMaskGivesTheInputBackAfterTheDelay) {
    LibraryScope const library;
    std::vector<float> const speech = makeSpeech(16000, 1.2);
    constexpr std::array durations{10, 15, 20, 30, 32, 40};
    // Milliseconds by the model's frame length and the input's duration; 0 where a pairing isn't served.
    for (auto const& [length, delays] :
         std::map<int, std::array<std::size_t, 6>>{{320, {10, 15, 10, 10, 18, 10}},
                                                   {480, {25, 15, 25, 15, 29, 25}},
                                                   {512, {31, 0, 28, 30, 16, 28}}}) {
        ModelShape shape;
        shape.frameLength = length;
        std::string const name = std::to_string(length);
        ASSERT_EQ(library.setModel(name, openModel(shape)), 0);
        for (std::size_t d = 0; d < durations.size(); ++d) {
            if (delays[d] == 0)
                continue;
            SCOPED_TRACE(testing::Message() << length << " samples, " << durations[d] << " ms");
            Stream stream(16000, 16000, durations[d], name.c_str());
            std::vector<float> const out = stream.cleanAll(speech);
            std::size_t const delay = delays[d] * 16;
            EXPECT_LT(peak({out.begin(), out.begin() + static_cast<std::ptrdiff_t>(delay) - 1}), 1e-3f);
            float worst = 0.0f;
            for (std::size_t i = delay; i < out.size(); ++i)
                worst = std::max(worst, std::abs(out[i] - speech[i - delay]));
            // The highest bin lies outside the filter range and is lost with what it holds of the noise.
            EXPECT_LT(worst, 2e-3f);
        }
    }
}

TEST(Streams, RunAtEveryRateAndDuration) {
    LibraryScope const library;
    for (char const* const version : versions)
        ASSERT_EQ(library.setModel(version, makeModel(version)), 0);
    std::size_t turn = 0;
    for (int const in : rates)
        for (int const out : rates)
            for (int const duration : {10, 20, 30, 40}) {
                SCOPED_TRACE(testing::Message() << in << " to " << out << ", " << duration << " ms");
                Stream stream(in, out, duration, versions[turn++ % versions.size()]);
                std::vector<float> const result = stream.cleanAll(makeSpeech(in, 0.25));
                EXPECT_TRUE(
                    std::ranges::all_of(result, [](float sample) { return std::abs(sample) <= 1.0f; }));
                EXPECT_GT(peak(result), 1e-4f);
            }
}

TEST(Streams, ExtremesAreClippedAndValuesThatAreNoNumbersDontStay) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    LibraryScope const library;
    for (char const* const version : versions)
        ASSERT_EQ(library.setModel(version, makeModel(version), "NIMBA_SKIP_FRAME_v0_0_6 TRUE\n"), 0);
    std::vector<float> const speech = makeSpeech(48000, 2.0);
    for (char const* const version : versions)
        for (int const rate : {16000, 48000}) {
            SCOPED_TRACE(testing::Message() << version << " at " << rate);
            std::size_t const size = static_cast<std::size_t>(rate / 100);
            Stream disturbed(rate, rate, 10, version);
            Stream silent(rate, rate, 10, version);
            std::vector<float> square(size);
            for (std::size_t i = 0; i < size; ++i)
                square[i] = i / 40 % 2 == 0 ? 1.5f : -1.5f;
            std::vector<float> const extremes{nan, infinity, -infinity, 3e38f, -3e38f, 1e-40f, nan};
            std::vector<float> bad(size);
            for (std::size_t i = 0; i < size; ++i)
                bad[i] = extremes[i % extremes.size()];
            for (int frame = 0; frame < 60; ++frame) {
                std::vector<float> const& in = frame % 3 == 0 ? bad : square;
                EXPECT_TRUE(std::ranges::all_of(disturbed.clean(in.data()),
                                                [](float sample) { return std::abs(sample) <= 1.0f; }));
                silent.clean(std::vector<float>(size).data());
            }
            // Later speech comes through as it does behind silence; the levels that were tracked differ.
            EXPECT_GT(rms(disturbed.cleanAll(speech)), 0.1f * rms(silent.cleanAll(speech)));
        }
}

TEST(Streams, AllocateNothingOnceTheyRun) {
    LibraryScope const library;
    std::string settings;
    for (char const* const prefix : {"TALVO_", "NIMBA_"})
        for (char const* const version : {"1", "2", "3", "4", "5", "6"})
            for (char const* const name :
                 {"ENABLE_THRESH_CUT", "ENABLE_CLIP_FIX", "ENABLE_BACKGROUND_SPEAKER_FIX",
                  "ENABLE_RM_THRESHOLD", "SMOOT_RM_MODIFY"})
                settings.append(prefix).append(name).append("_v0_0_").append(version).append(" TRUE\n");
    std::vector<float> const speech = makeSpeech(44100, 1.0);
    for (char const* const version : versions) {
        ASSERT_EQ(library.setModel(version, makeModel(version), settings), 0);
        for (int const rate : {16000, 44100}) {
            Stream stream(rate, rate, 20, version);
            auto const size = static_cast<std::size_t>(rate / 50);
            long before = 0;
            for (std::size_t frame = 0; frame < 40; ++frame) {
                if (frame == 20)
                    before = allocationCount();
                stream.clean(speech.data() + frame * size % (speech.size() - size));
            }
            EXPECT_EQ(allocationCount() - before, 0) << version << " at " << rate;
        }
    }
}

} // namespace
