// OpenBLAS on the sizes of the networks, on one thread.

#include <benchmark/benchmark.h>
#include <cblas.h>
#include <vector>

namespace {

void openblasSgemv(benchmark::State& state) {
    openblas_set_num_threads(1);
    auto const rows = static_cast<int>(state.range(0));
    auto const cols = static_cast<int>(state.range(1));
    std::size_t const size = static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
    std::vector<float> const v(static_cast<std::size_t>(rows), 0.5f);
    std::vector<float> const m(size, 0.25f);
    std::vector<float> const b(static_cast<std::size_t>(cols), 1.0f);
    std::vector<float> out(b);
    for (auto _ : state) {
        out = b;
        cblas_sgemv(CblasRowMajor, CblasTrans, rows, cols, 1.0f, m.data(), cols, v.data(), 1, 1.0f,
                    out.data(), 1);
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["flops"] =
        benchmark::Counter(2.0 * static_cast<double>(size), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(openblasSgemv)->Args({768, 256})->Args({256, 256})->Args({256, 128});

} // namespace
