#include "noise_library/support/allocation_count.hpp"
#include "noise_library/support/library_scope.hpp"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>

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
    struct Pairing {
        int frameLength;
        int duration;
        std::size_t delay; ///< milliseconds
    };
    LibraryScope const library;
    std::vector<float> speech = makeSpeech(16000, 1.2);
    for (int const length : {320, 480, 512}) {
        ModelShape shape;
        shape.frameLength = length;
        ASSERT_EQ(library.setModel(std::to_string(length), openModel(shape)), 0);
    }
    for (Pairing const& p : {Pairing{320, 10, 10},
                             {320, 15, 15},
                             {320, 20, 10},
                             {320, 30, 10},
                             {320, 32, 18},
                             {320, 40, 10},
                             {480, 10, 25},
                             {480, 15, 15},
                             {480, 20, 25},
                             {480, 30, 15},
                             {480, 32, 29},
                             {480, 40, 25},
                             {512, 10, 31},
                             {512, 20, 28},
                             {512, 30, 30},
                             {512, 32, 16},
                             {512, 40, 28}}) {
        SCOPED_TRACE(testing::Message() << p.frameLength << " samples, " << p.duration << " ms");
        Stream stream(16000, 16000, p.duration, std::to_string(p.frameLength).c_str());
        std::vector<float> const out = stream.cleanAll(speech);
        std::size_t const delay = p.delay * 16;
        EXPECT_LT(peak({out.begin(), out.begin() + static_cast<std::ptrdiff_t>(delay) - 1}), 1e-3f);
        float worst = 0.0f;
        for (std::size_t i = delay; i < out.size(); ++i)
            worst = std::max(worst, std::abs(out[i] - speech[i - delay]));
        // The highest bin lies outside the filter range and is lost with what it holds of the noise.
        EXPECT_LT(worst, 2e-3f);
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

TEST(Streams, FloatsAndShortsAgree) {
    LibraryScope const library;
    ASSERT_EQ(library.setModel("model", makeModel("0.0.5")), 0);
    Stream stream(16000, 16000, 10, "model");
    void* const session =
        talvoAudioNcCreateSession(samplingRate(16000), samplingRate(16000), frameDuration(10), "model");
    std::vector<float> const speech = makeSpeech(16000, 1.0);
    for (std::size_t at = 0; at + 160 <= speech.size(); at += 160) {
        std::array<short, 160> shorts{};
        std::array<float, 160> floats{};
        for (std::size_t i = 0; i < 160; ++i) {
            shorts[i] = static_cast<short>(speech[at + i] * 32768.0f);
            floats[i] = static_cast<float>(shorts[i]) / 32768.0f;
        }
        ASSERT_EQ(talvoAudioNcCleanAmbientNoiseInt16(session, shorts.data(), 160, shorts.data(), 160), 0);
        std::vector<float> const& out = stream.clean(floats.data());
        for (std::size_t i = 0; i < 160; ++i)
            EXPECT_EQ(shorts[i], static_cast<short>(out[i] * 32768.0f)) << "cut toward zero";
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

TEST(StreamsDeathTest, PairingsThatAVersionCantServeEndTheProcess) {
    struct Pairing {
        char const* version;
        int frameLength;
        int duration;
        char const* text;
    };
    for (Pairing const& p :
         {Pairing{"0.0.5", 512, 15,
                  "outputData_.size\\(\\) >= "
                  "\\(params_.inputFrameDuration\\*params_.sampleRate\\)/1000\\+params_.step"},
          {"0.0.2", 512, 10,
           "outputData_.size\\(\\) < \\(params_.inputFrameDuration\\*params_.sampleRate\\)/1000 "
           "\\+params_.step"},
          {"0.0.1", 480, 10, "\\)/1000 \\+params_.step\\), function cleanNoise, file noise_canceller/"},
          {"0.0.5", 160, 10, "outputData_.size\\(\\) < 2 \\* params_.step"},
          {"0.0.5", 240, 10, "outputData_.size\\(\\) >= params_.step"},
          {"0.0.5", 640, 10, "outputData_.size\\(\\) >= params_.step"}}) {
        LibraryScope const library;
        ModelShape shape;
        shape.frameLength = p.frameLength;
        library.setModel("model", makeModel(p.version, shape));
        std::vector<float> const speech = makeSpeech(16000, 0.5);
        EXPECT_DEATH(Stream(16000, 16000, p.duration, "model").cleanAll(speech), p.text);
    }
}

} // namespace
