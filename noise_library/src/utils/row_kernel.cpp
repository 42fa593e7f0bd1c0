#include "utils/row_kernel.hpp"

#include <array>
#include <bit>

namespace TALVO::UTIL_FUNCTIONS {
namespace {

/// Outputs worked on at a time, and rows added in one sweep over them: an output is loaded and stored
/// once for four products, while each still gets its products one after the other.
constexpr std::size_t chunk = 64;
constexpr std::size_t sweep = 4;

[[gnu::always_inline]] inline float widened(float weight) { return weight; }
[[gnu::always_inline]] inline float widened(std::uint16_t weight) {
    return std::bit_cast<float>(std::uint32_t{weight} << 16);
}

template <class Weight>
[[gnu::always_inline]] inline void addSweep(float const* v, Weight const* m, std::size_t cols,
                                            std::size_t begin, std::size_t end, float* __restrict out) {
    for (std::size_t c = begin; c < end; ++c) {
        float sum = out[c] + v[0] * widened(m[c]);
        sum += v[1] * widened(m[cols + c]);
        sum += v[2] * widened(m[2 * cols + c]);
        sum += v[3] * widened(m[3 * cols + c]);
        out[c] = sum;
    }
}

/// Asks for a chunk's share of the rows two sweeps ahead. Weights outgrow the inner caches, and the
/// processor's own prefetching stops at every page.
template <class Weight>
[[gnu::always_inline]] inline void prefetchAhead(Weight const* m, std::size_t cols, std::size_t begin) {
    constexpr std::size_t line = 64 / sizeof(Weight);
    Weight const* const ahead = m + 2 * sweep * cols + begin * sweep;
    for (std::size_t i = 0; i < sweep * chunk; i += line)
        __builtin_prefetch(ahead + i);
}

/// One body, compiled once for each register width.
template <class Weight>
[[gnu::always_inline]] inline void addRows(float const* v, std::size_t rows, Weight const* m,
                                           std::size_t cols, float* __restrict out) {
    std::size_t r = 0;
    for (; r + sweep <= rows; r += sweep, m += sweep * cols) {
        std::size_t c = 0;
        for (; c + chunk <= cols; c += chunk) {
            if (r + 3 * sweep <= rows)
                prefetchAhead(m, cols, c);
            addSweep(v + r, m, cols, c, c + chunk, out);
        }
        addSweep(v + r, m, cols, c, cols, out);
    }
    for (; r < rows; ++r, m += cols)
        for (std::size_t c = 0; c < cols; ++c)
            out[c] += v[r] * widened(m[c]);
}

template <class Weight>
void addRowsBaseline(float const* v, std::size_t rows, Weight const* m, std::size_t cols, float* out) {
    addRows(v, rows, m, cols, out);
}

#if defined(__x86_64__) && defined(__GNUC__)
template <class Weight>
[[gnu::target("avx2")]] void addRowsAvx2(float const* v, std::size_t rows, Weight const* m, std::size_t cols,
                                         float* out) {
    addRows(v, rows, m, cols, out);
}

template <class Weight>
[[gnu::target("avx512f")]] void addRowsAvx512(float const* v, std::size_t rows, Weight const* m,
                                              std::size_t cols, float* out) {
    addRows(v, rows, m, cols, out);
}
#endif

struct Variants {
    std::array<RowKernelVariant, 3> list{
        {{"baseline", addRowsBaseline<float>, addRowsBaseline<std::uint16_t>}}};
    std::size_t count = 1;

    Variants() {
#if defined(__x86_64__) && defined(__GNUC__)
        if (__builtin_cpu_supports("avx2"))
            list[count++] = {"avx2", addRowsAvx2<float>, addRowsAvx2<std::uint16_t>};
        if (__builtin_cpu_supports("avx512f"))
            list[count++] = {"avx512f", addRowsAvx512<float>, addRowsAvx512<std::uint16_t>};
#endif
    }
};

Variants const& variants() {
    static Variants const all;
    return all;
}

} // namespace

std::span<RowKernelVariant const> rowKernelVariants() { return {variants().list.data(), variants().count}; }

RowKernelVariant const& rowKernel() {
    static RowKernelVariant const& widest = rowKernelVariants().back();
    return widest;
}

} // namespace TALVO::UTIL_FUNCTIONS
