#include "noise_library/support/allocation_count.hpp"
#include "noise_library/support/library_scope.hpp"

#include <gmock/gmock.h>

namespace {

using namespace noise_test;

constexpr std::array versions{"0.0.1", "0.0.2", "0.0.3", "0.0.4", "0.0.5", "0.0.6"};

/// A cleaning session on a float stream.
class Stream {
  public:
    Stream(int rate, int duration, char const* model)
        : session_(openCleaning(rate, rate, duration, model)),
          out_(static_cast<std::size_t>(rate * duration / 1000)) {}
    ~Stream() { EXPECT_EQ(talvoAudioNcCloseSession(session_), 0); }
    Stream(Stream const&) = delete;
    Stream& operator=(Stream const&) = delete;

    std::vector<float> const& clean(float const* in) {
        auto const size = static_cast<unsigned>(out_.size());
        EXPECT_EQ(talvoAudioNcCleanAmbientNoiseFloat(session_, in, size, out_.data(), size), 0);
        return out_;
    }
    void setStrength(float strength, int expected) {
        EXPECT_EQ(talvoAudioNcSetStrength(session_, strength), expected);
    }
    std::vector<float> cleanAll(std::vector<float> const& in) {
        std::vector<float> all;
        for (std::size_t at = 0; at + out_.size() <= in.size(); at += out_.size()) {
            clean(in.data() + at);
            all.insert(all.end(), out_.begin(), out_.end());
        }
        return all;
    }

  private:
    void* session_;
    std::vector<float> out_;
};

float rms(std::vector<float> const& samples) {
    double sum = 0.0;
    for (float const sample : samples)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return static_cast<float>(std::sqrt(sum / static_cast<double>(samples.size())));
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
            Stream disturbed(rate, 10, version);
            Stream silent(rate, 10, version);
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

TEST(Streams, ACompressionThatDoesntFitTheModelCountsAsTheDefault) {
    LibraryScope const library;
    std::vector<float> const speech = makeSpeech(16000, 0.5);
    for (std::string const version : {"0_0_4", "0_0_5", "0_0_6"}) {
        SCOPED_TRACE(version);
        std::string const dotted = {version[0], '.', version[2], '.', version[4]};
        ASSERT_EQ(library.setModel(version, makeModel(dotted.c_str())), 0);
        std::string const wrong = version + " wrong";
        ASSERT_EQ(
            library.setModel(wrong, makeModel(dotted.c_str()), "NIMBA_COMPRESS_RATE_v" + version + " 7\n"),
            0);
        testing::internal::CaptureStdout();
        Stream fallen(16000, 10, wrong.c_str());
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "WARNING OF COMPRESS_RATE VALUE. IT MUST FIT THE MODEL \n DEFAULT VALUE 2\n");
        EXPECT_EQ(fallen.cleanAll(speech), Stream(16000, 10, version.c_str()).cleanAll(speech));
    }
}

TEST(Streams, StrengthGoesEvenlyFromTheInputToAllOfTheCleaning) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    LibraryScope const library;
    std::vector<float> const speech = makeSpeech(16000, 1.0);
    for (char const* const version : versions) {
        SCOPED_TRACE(version);
        ASSERT_EQ(library.setModel(version, makeModel(version)), 0);
        std::array<std::vector<float>, 5> out;
        for (std::size_t quarters = 0; quarters < out.size(); ++quarters) {
            Stream stream(16000, 10, version);
            if (quarters < 4)
                stream.setStrength(static_cast<float>(quarters) / 4.0f, 0);
            for (float const wrong : {-0.01f, 1.01f, nan})
                stream.setStrength(wrong, 1);
            out[quarters] = stream.cleanAll(speech);
        }
        auto const silence = [](std::vector<float> const& samples) {
            auto const sounds = [](float sample) { return std::abs(sample) > 1e-3f; };
            return static_cast<std::size_t>(std::ranges::find_if(samples, sounds) - samples.begin());
        };
        std::size_t const late = silence(out[0]) - silence(speech);
        float taken = 0.0f;
        for (std::size_t i = late; i < out[0].size(); ++i) {
            ASSERT_NEAR(out[0][i], speech[i - late], 1e-4f) << i;
            for (std::size_t quarters = 1; quarters < 4; ++quarters) {
                float const share = static_cast<float>(quarters) / 4.0f;
                ASSERT_NEAR(out[quarters][i], out[0][i] + share * (out[4][i] - out[0][i]), 1e-4f) << i;
            }
            taken = std::max(taken, std::abs(out[4][i] - out[0][i]));
        }
        EXPECT_GT(taken, 0.01f);
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
            Stream stream(rate, 20, version);
            auto const size = static_cast<std::size_t>(rate / 50);
            long before = 0;
            for (std::size_t frame = 0; frame < 40; ++frame) {
                if (frame == 20)
                    before = allocations;
                stream.clean(speech.data() + frame * size % (speech.size() - size));
            }
            EXPECT_EQ(allocations - before, 0) << version << " at " << rate;
        }
    }
}

} // namespace
