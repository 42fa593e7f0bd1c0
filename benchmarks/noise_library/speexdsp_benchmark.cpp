// The preprocessor of speexdsp, a suppressor without a network, on the same clip and frames.

#include "noise_library/support/model_file.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <speex/speex_preprocess.h>
#include <vector>

namespace {

void speexdspPreprocess(benchmark::State& state) {
    constexpr int rate = 16000;
    constexpr std::size_t frameSize = rate / 100;
    std::vector<float> const speech = noise_test::makeSpeech(rate, 4.0);
    std::vector<spx_int16_t> samples(speech.size());
    std::transform(speech.begin(), speech.end(), samples.begin(),
                   [](float sample) { return static_cast<spx_int16_t>(sample * 32767.0f); });
    SpeexPreprocessState* const preprocess = speex_preprocess_state_init(frameSize, rate);
    std::vector<spx_int16_t> frame(frameSize);
    std::size_t at = 0;
    for (auto _ : state) {
        std::copy_n(samples.begin() + static_cast<std::ptrdiff_t>(at), frameSize, frame.begin());
        speex_preprocess_run(preprocess, frame.data());
        benchmark::DoNotOptimize(frame.data());
        at = at + 2 * frameSize <= samples.size() ? at + frameSize : 0;
    }
    state.counters["realtime_factor"] =
        benchmark::Counter(0.01 * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    speex_preprocess_state_destroy(preprocess);
}
BENCHMARK(speexdspPreprocess);

} // namespace
