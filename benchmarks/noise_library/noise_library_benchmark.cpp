// The speed of the audio noise library. realtime_factor is the time spent on a second of sound.

#include "noise_library/support/model_file.hpp"
#include "talvo_audio_sdk.h"
#include "utils/matrix_functions.hpp"
#include "utils/row_kernel.hpp"

#include <array>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace TALVO;

/// Stands for a version: the model that ships, whose weights are in bfloat16.
constexpr char shipped[] = "shipped";

/// The library with one model of 32 ms frames and 885,000 multiply-adds a network frame.
class LibraryFixture {
  public:
    explicit LibraryFixture(std::string const& version) {
        std::filesystem::path const path = version == shipped ? CORVANTA_SHIPPED_MODEL : makeModel(version);
        ready_ =
            talvoAudioGlobalInit(nullptr) == 0 && talvoAudioSetModel(path.wstring().c_str(), "bench") == 0;
    }
    ~LibraryFixture() { talvoAudioGlobalDestroy(); }
    LibraryFixture(LibraryFixture const&) = delete;
    LibraryFixture& operator=(LibraryFixture const&) = delete;

    bool ready() const { return ready_; }

  private:
    std::filesystem::path makeModel(std::string const& version) const {
        noise_test::ModelShape shape;
        shape.frameLength = 512;
        shape.previewFrames = 4;
        shape.stateSize = 256;
        shape.hiddenLayers = 3;
        return folder_.write("bench.nmw", noise_test::makeModel(version, shape).plain());
    }

    noise_test::TemporaryFolder folder_;
    bool ready_ = false;
};

void sessionOfVersion(benchmark::State& state, std::string const& version, int rate, float loudness = 1.0f) {
    LibraryFixture const library(version);
    auto const sampling = static_cast<TalvoAudioSamplingRate>(rate);
    void* const session = talvoAudioNcCreateSession(sampling, sampling, TALVO_AUDIO_DURATION_10, "bench");
    if (!library.ready() || session == nullptr) {
        state.SkipWithError("no session");
        return;
    }
    auto const frameSize = static_cast<unsigned>(rate / 100);
    std::vector<float> speech = noise_test::makeSpeech(rate, 4.0);
    for (float& sample : speech)
        sample *= loudness;
    std::vector<float> out(frameSize);
    std::size_t at = 0;
    for (auto _ : state) {
        if (talvoAudioNcCleanAmbientNoiseFloat(session, speech.data() + at, frameSize, out.data(),
                                               frameSize) != 0)
            state.SkipWithError("a frame failed");
        at = at + 2 * frameSize <= speech.size() ? at + frameSize : 0;
    }
    state.counters["realtime_factor"] =
        benchmark::Counter(0.01 * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    talvoAudioNcCloseSession(session);
}

BENCHMARK_CAPTURE(sessionOfVersion, shipped_16kHz, shipped, 16000);
BENCHMARK_CAPTURE(sessionOfVersion, v0_0_5_16kHz, "0.0.5", 16000);
BENCHMARK_CAPTURE(sessionOfVersion, v0_0_5_48kHz, "0.0.5", 48000);
BENCHMARK_CAPTURE(sessionOfVersion, v0_0_5_16kHz_denormals, "0.0.5", 16000, 1e-38f);
BENCHMARK_CAPTURE(sessionOfVersion, v0_0_6_16kHz, "0.0.6", 16000);
BENCHMARK_CAPTURE(sessionOfVersion, v0_0_3_16kHz, "0.0.3", 16000);

void rowKernel(benchmark::State& state, std::size_t variant) {
    auto const rows = static_cast<std::size_t>(state.range(0));
    auto const cols = static_cast<std::size_t>(state.range(1));
    auto const variants = UTIL_FUNCTIONS::rowKernelVariants();
    if (variant >= variants.size()) {
        state.SkipWithError("this processor lacks it");
        return;
    }
    state.SetLabel(variants[variant].name);
    std::vector<float> const v(rows, 0.5f);
    std::vector<float> const m(rows * cols, 0.25f);
    std::vector<float> out(cols);
    for (auto _ : state) {
        variants[variant].run(v.data(), rows, m.data(), cols, out.data());
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["flops"] = benchmark::Counter(2.0 * static_cast<double>(rows * cols),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}

/// The sizes of the network above: the first layer and the gate, the layers behind, the output.
void networkSizes(benchmark::internal::Benchmark* b) {
    b->Args({768, 256})->Args({256, 256})->Args({256, 128});
}

BENCHMARK_CAPTURE(rowKernel, narrowest, 0)->Apply(networkSizes);
BENCHMARK_CAPTURE(rowKernel, second, 1)->Apply(networkSizes);
BENCHMARK_CAPTURE(rowKernel, third, 2)->Apply(networkSizes);

/// All products of a network frame in turn, so that the weights come from where they lie in practice.
void wholeNetwork(benchmark::State& state, std::size_t variant, bool bfloat16) {
    auto const variants = UTIL_FUNCTIONS::rowKernelVariants();
    if (variant >= variants.size()) {
        state.SkipWithError("this processor lacks it");
        return;
    }
    state.SetLabel(variants[variant].name);
    std::vector<CONTAINERS::Matrix> matrices;
    for (auto const& [rows, cols, count] : {std::array{768, 256, 3}, {256, 256, 4}, {256, 128, 1}})
        for (int i = 0; i < count; ++i)
            matrices.emplace_back(rows, cols).keepBfloat16();
    std::vector<float> const v(768, 0.5f);
    std::vector<float> out(256);
    for (auto _ : state)
        for (CONTAINERS::Matrix const& m : std::as_const(matrices)) {
            if (bfloat16)
                variants[variant].runBfloat16(v.data(), m.rowSize(), m.bfloat16().data(), m.colSize(),
                                              out.data());
            else
                variants[variant].run(v.data(), m.rowSize(), m.row(0), m.colSize(), out.data());
            benchmark::DoNotOptimize(out.data());
        }
}
BENCHMARK_CAPTURE(wholeNetwork, narrowest, 0, false);
BENCHMARK_CAPTURE(wholeNetwork, second, 1, false);
BENCHMARK_CAPTURE(wholeNetwork, third, 2, false);
BENCHMARK_CAPTURE(wholeNetwork, narrowest_bfloat16, 0, true);
BENCHMARK_CAPTURE(wholeNetwork, second_bfloat16, 1, true);
BENCHMARK_CAPTURE(wholeNetwork, third_bfloat16, 2, true);

void matMulPlusB(benchmark::State& state) {
    auto const rows = static_cast<std::size_t>(state.range(0));
    auto const cols = static_cast<std::size_t>(state.range(1));
    std::vector<float> const v(rows, 0.5f);
    CONTAINERS::Matrix const m(rows, cols, std::vector<float>(rows * cols, 0.25f));
    std::vector<float> const b(cols, 1.0f);
    std::vector<float> out;
    for (auto _ : state) {
        UTIL_FUNCTIONS::matMulPlusB(v, m, b, out);
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["flops"] = benchmark::Counter(2.0 * static_cast<double>(rows * cols),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(matMulPlusB)->Apply(networkSizes);

} // namespace

BENCHMARK_MAIN();
