#include "noise_library/support/allocation_count.hpp"
#include "noise_library/support/library_scope.hpp"
#include "support/ScopedVariable.hpp"

#include <gmock/gmock.h>
#include <numbers>
#include <numeric>

#include <dlfcn.h>
#include <ladspa.h>

namespace {

using namespace noise_test;
using corvanta::test::ScopedVariable;
using testing::HasSubstr;

using Samples = std::vector<float>;

/// The plugin's only descriptor; the file stays loaded.
LADSPA_Descriptor const& descriptor() {
    static auto const* const found = [] {
        void* const file = dlopen(TALVO_NOISE_PLUGIN, RTLD_NOW);
        if (file == nullptr)
            throw std::runtime_error(dlerror());
        auto const get = reinterpret_cast<LADSPA_Descriptor_Function>(dlsym(file, "ladspa_descriptor"));
        EXPECT_EQ(get(1), nullptr);
        return get(0);
    }();
    return *found;
}

/// A host of one instance, which hands it blocks of its own size in one place for both directions.
class Host {
  public:
    explicit Host(unsigned long rate, float strength = 1.0f)
        : strength_(strength), handle_(descriptor().instantiate(&descriptor(), rate)) {
        if (handle_ == nullptr)
            throw std::runtime_error("no instance");
        descriptor().connect_port(handle_, 2, &strength_);
        descriptor().connect_port(handle_, 3, &latency_);
        activate();
    }
    ~Host() { descriptor().cleanup(handle_); }
    Host(Host const&) = delete;
    Host& operator=(Host const&) = delete;

    void activate() { descriptor().activate(handle_); }
    void setStrength(float strength) { strength_ = strength; }

    /// In blocks of these sizes, over and over.
    Samples run(Samples samples, std::vector<std::size_t> const& sizes) {
        std::size_t next = 0;
        for (std::size_t at = 0; at < samples.size();) {
            std::size_t const size = std::min(sizes[next++ % sizes.size()], samples.size() - at);
            descriptor().connect_port(handle_, 0, samples.data() + at);
            descriptor().connect_port(handle_, 1, samples.data() + at);
            long const before = allocations;
            descriptor().run(handle_, size);
            allocations_ += allocations - before;
            at += size;
        }
        return samples;
    }
    /// How often a run has asked for memory.
    long allocationsInRuns() const { return allocations_; }
    std::size_t latency() const { return static_cast<std::size_t>(latency_); }

  private:
    float strength_;
    float latency_ = -1.0f;
    long allocations_ = 0;
    LADSPA_Handle handle_;
};

Samples delayed(Samples const& samples, std::size_t by) {
    Samples late(by, 0.0f);
    late.insert(late.end(), samples.begin(), samples.end() - static_cast<std::ptrdiff_t>(by));
    return late;
}

/// What the library makes of the same sound, one frame late. An instance must be there, whose model this
/// takes.
Samples cleanedByLibrary(int rate, Samples samples, float strength) {
    auto const frame = static_cast<unsigned>(rate / 100);
    void* const session = openCleaning(rate, rate, 10, "talvo_noise");
    EXPECT_EQ(talvoAudioNcSetStrength(session, strength), 0);
    for (std::size_t at = 0; at + frame <= samples.size(); at += frame)
        EXPECT_EQ(talvoAudioNcCleanAmbientNoiseFloat(session, samples.data() + at, frame, samples.data() + at,
                                                     frame),
                  0);
    EXPECT_EQ(talvoAudioNcCloseSession(session), 0);
    return delayed(samples, frame);
}

TEST(Ladspa, GivesWhatTheLibraryGivesAndTheInputEquallyLateInBlocksOfAnySize) {
    struct Row {
        int rate;
        std::vector<std::size_t> sizes;
    };
    for (auto const& [rate, sizes] : std::initializer_list<Row>{{16000, {1, 7, 0, 333}},
                                                                {24000, {240}},
                                                                {32000, {4096}},
                                                                {44100, {441, 17}},
                                                                {48000, {1023, 1}},
                                                                {88200, {64}},
                                                                {96000, {128, 5000}}}) {
        SCOPED_TRACE(rate);
        Samples const speech = makeSpeech(rate, 1.0);
        auto const hertz = static_cast<unsigned long>(rate);
        Host untouched(hertz, 0.0f);
        EXPECT_EQ(untouched.run(speech, sizes), delayed(speech, untouched.latency()));
        Host cleaning(hertz, 1.0f);
        Samples const cleaned = cleaning.run(speech, sizes);
        EXPECT_EQ(cleaning.allocationsInRuns(), 0);
        EXPECT_EQ(cleaned, cleanedByLibrary(rate, speech, 1.0f));
        Samples const half = Host(hertz, 0.5f).run(speech, sizes);
        Samples const late = delayed(speech, untouched.latency());
        for (std::size_t i = 0; i < half.size(); ++i)
            ASSERT_NEAR(half[i], 0.5f * (cleaned[i] + late[i]), 1e-6f) << i;

        // What the cleaner hears lies on what is mixed with it, within half a sample.
        Samples tone(speech.size());
        for (std::size_t i = 0; i < tone.size(); ++i)
            tone[i] = 0.5f * static_cast<float>(
                                 std::sin(2.0 * std::numbers::pi * 1000.0 * static_cast<double>(i) / rate));
        float const halfASample =
            0.5f * 1000.0f * std::numbers::pi_v<float> / static_cast<float>(rate) + 0.005f;
        Samples const heard = cleanedByLibrary(rate, tone, 0.0f);
        for (std::size_t i = 2 * untouched.latency(); i < tone.size(); ++i)
            ASSERT_NEAR(heard[i], tone[i - untouched.latency()], halfASample) << i;
    }
}

TEST(Ladspa, InstancesStandAloneAndBeginAnew) {
    Samples const speech = makeSpeech(48000, 0.5);
    Samples const slow(speech.begin(), speech.begin() + 8000);
    Samples const alone = Host(48000).run(speech, {256});
    Samples const slowAlone = Host(16000).run(slow, {100});
    Host first(48000);
    Host second(16000);
    for (int time = 0; time < 2; ++time) {
        Samples together;
        Samples slowTogether;
        for (std::size_t part = 0; part < 4; ++part) {
            auto const piece = [part](Samples const& all) {
                auto const size = static_cast<std::ptrdiff_t>(all.size() / 4);
                auto const begin = all.begin() + static_cast<std::ptrdiff_t>(part) * size;
                return Samples(begin, begin + size);
            };
            std::ranges::copy(first.run(piece(speech), {333}), std::back_inserter(together));
            std::ranges::copy(second.run(piece(slow), {50, 3}), std::back_inserter(slowTogether));
        }
        EXPECT_EQ(together, alone) << time;
        EXPECT_EQ(slowTogether, slowAlone) << time;
        first.activate();
        second.activate();
    }
}

TEST(Ladspa, TakesAnyStrengthAndAnySound) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    Samples const speech = makeSpeech(48000, 0.5);
    Samples const late = Host(48000, 0.0f).run(speech, {512});
    Samples const cleaned = Host(48000, 1.0f).run(speech, {512});
    EXPECT_EQ(Host(48000, -3.0f).run(speech, {512}), late);
    EXPECT_EQ(Host(48000, 40.0f).run(speech, {512}), cleaned);
    EXPECT_EQ(Host(48000, nan).run(speech, {512}), cleaned);

    // A change takes ten milliseconds, in which nothing leaps.
    Host host(48000, 0.0f);
    Samples const quiet(4800, 0.25f);
    host.run(quiet, {480});
    host.setStrength(1.0f);
    Samples const turned = host.run(quiet, {480});
    for (std::size_t i = 1; i < turned.size(); ++i)
        ASSERT_LT(std::abs(turned[i] - turned[i - 1]), 0.01f) << i;

    Host hurt(48000, 1.0f);
    Samples wrong(4800, nan);
    wrong[7] = std::numeric_limits<float>::infinity();
    for (float const sample : hurt.run(wrong, {480}))
        ASSERT_TRUE(std::isfinite(sample));
    hurt.setStrength(0.5f);
    hurt.run(speech, {480});
    for (float const sample : hurt.run(speech, {480}))
        ASSERT_TRUE(std::isfinite(sample));
}

TEST(Ladspa, TakesNoiseAfterSilenceForNoise) {
    Host host(16000);
    for (float const level : {0.0f, 2e-5f}) { // nothing, and the last bit of 16
        std::uint32_t random = 1;
        auto const noise = [&random](float peak) {
            Samples samples(32000);
            for (float& sample : samples) {
                random = random * 1664525u + 1013904223u;
                sample = peak * (static_cast<float>(random >> 8) / 8388608.0f - 1.0f);
            }
            return samples;
        };
        auto const energy = [](Samples const& samples) {
            return std::inner_product(samples.begin() + 16000, samples.end(), samples.begin() + 16000, 0.0f);
        };
        host.run(noise(level), {480});
        Samples const loud = noise(0.2f);
        EXPECT_LT(energy(host.run(loud, {480})), 0.02f * energy(loud)) << level;
    }
}

TEST(Ladspa, RefusesInWordsWhatItCantServe) {
    auto const refusal = [](unsigned long rate) {
        testing::internal::CaptureStderr();
        testing::internal::CaptureStdout();
        EXPECT_EQ(descriptor().instantiate(&descriptor(), rate), nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        return testing::internal::GetCapturedStderr();
    };
    for (unsigned long const rate : {0ul, 8000ul, 22050ul, 192000ul})
        EXPECT_THAT(refusal(rate),
                    HasSubstr("talvo_noise: " + std::to_string(rate) + " Hz: the sample rate must be"));
    TemporaryFolder const folder;
    ScopedVariable const elsewhere("CORVANTA_RESOURCES", folder.path().string());
    auto const place = (folder.path() / "c6.f.s.ced125.tw").string();
    EXPECT_THAT(refusal(48000), HasSubstr("talvo_noise: no noise model at " + place));
    folder.write("c6.f.s.ced125.tw", "no model");
    EXPECT_THAT(refusal(48000), HasSubstr("talvo_noise: the noise model " + place + " can't be used:"));
    folder.write("c6.f.s.ced125.tw", makeModel("0.0.5").enciphered());
    Host const host(48000);
    // One model at a time, the first one's.
    ScopedVariable const nowhere("CORVANTA_RESOURCES", "/nowhere");
    Host const other(16000);
}

TEST(Ladspa, WorksBesideOtherCodeThatHasStartedTheLibrary) {
    Samples const speech = makeSpeech(16000, 0.3);
    Samples const expected = Host(16000).run(speech, {160});
    {
        LibraryScope const library;
        EXPECT_EQ(Host(16000).run(speech, {160}), expected);
        EXPECT_EQ(Host(16000).run(speech, {160}), expected);
        // Which still runs after all instances have gone.
        EXPECT_EQ(library.setModel("own", makeModel("0.0.5")), 0);
    }
    Host host(16000, 1.0f);
    EXPECT_EQ(talvoAudioGlobalDestroy(), 0);
    Samples const rest = host.run(speech, {160});
    Samples const late = delayed(speech, host.latency());
    EXPECT_TRUE(std::equal(rest.begin() + 320, rest.end(), late.begin() + 320))
        << "the sound goes on untouched";
}

} // namespace
