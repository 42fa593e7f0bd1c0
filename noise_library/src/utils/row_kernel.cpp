#include "utils/row_kernel.hpp"

#include "utils/bfloat16_rows.hpp"

#include <array>

namespace TALVO::UTIL_FUNCTIONS {
namespace {

/// Outputs worked on at a time, and rows added in one sweep over them: an output is loaded and stored
/// once for four products, while each still gets its products one after the other.
constexpr std::size_t chunk = 64;
constexpr std::size_t sweep = 4;

/// Columns `begin` to `end` of some rows, one after the other for each output.
template <std::size_t Rows>
[[gnu::always_inline]] inline void addSome(float const* v, float const* m, std::size_t cols,
                                           std::size_t begin, std::size_t end, float* __restrict out) {
    for (std::size_t c = begin; c < end; ++c) {
        float sum = out[c];
        for (std::size_t r = 0; r < Rows; ++r)
            sum += v[r] * m[r * cols + c];
        out[c] = sum;
    }
}

/// The same; `begin` is where a block begins.
template <std::size_t Rows>
[[gnu::always_inline]] inline void addSome(float const* v, std::uint16_t const* m, std::size_t cols,
                                           std::size_t begin, std::size_t end, float* __restrict out) {
    std::size_t c = begin;
    for (; c + bfloat16Block <= end; c += bfloat16Block) {
        for (std::size_t i = 0; i < wordsOfBlock; ++i) {
            float lower = out[c + i];
            float upper = out[c + wordsOfBlock + i];
            for (std::size_t r = 0; r < Rows; ++r) {
                std::uint32_t const pair = reinterpret_cast<Bfloat16Pair const*>(m + r * cols + c)[i];
                lower += v[r] * lowerOf(pair);
                upper += v[r] * upperOf(pair);
            }
            out[c + i] = lower;
            out[c + wordsOfBlock + i] = upper;
        }
    }
    for (; c < end; ++c)
        for (std::size_t r = 0; r < Rows; ++r)
            out[c] += v[r] * lowerOf(m[r * cols + c]);
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
            addSome<sweep>(v + r, m, cols, c, c + chunk, out);
        }
        addSome<sweep>(v + r, m, cols, c, cols, out);
    }
    for (; r < rows; ++r, m += cols)
        addSome<1>(v + r, m, cols, 0, cols, out);
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
