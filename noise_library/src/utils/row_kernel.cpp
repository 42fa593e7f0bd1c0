#include "utils/row_kernel.hpp"

#include <array>

namespace TALVO::UTIL_FUNCTIONS {
namespace {

/// One body, compiled once for each register width. Eight rows are added in one sweep over the
/// outputs, so that an output is loaded and stored once for eight products.
[[gnu::always_inline]] inline void addRows(float const* v, std::size_t rows, float const* m, std::size_t cols,
                                           float* __restrict out) {
    std::size_t r = 0;
    for (; r + 8 <= rows; r += 8, m += 8 * cols) {
        float const* const w = v + r;
        for (std::size_t c = 0; c < cols; ++c) {
            float sum = out[c] + w[0] * m[c];
            sum += w[1] * m[cols + c];
            sum += w[2] * m[2 * cols + c];
            sum += w[3] * m[3 * cols + c];
            sum += w[4] * m[4 * cols + c];
            sum += w[5] * m[5 * cols + c];
            sum += w[6] * m[6 * cols + c];
            sum += w[7] * m[7 * cols + c];
            out[c] = sum;
        }
    }
    for (; r < rows; ++r, m += cols)
        for (std::size_t c = 0; c < cols; ++c)
            out[c] += v[r] * m[c];
}

void addRowsBaseline(float const* v, std::size_t rows, float const* m, std::size_t cols, float* out) {
    addRows(v, rows, m, cols, out);
}

#if defined(__x86_64__) && defined(__GNUC__)
[[gnu::target("avx2")]] void addRowsAvx2(float const* v, std::size_t rows, float const* m, std::size_t cols,
                                         float* out) {
    addRows(v, rows, m, cols, out);
}

[[gnu::target("avx512f,prefer-vector-width=512")]] void
addRowsAvx512(float const* v, std::size_t rows, float const* m, std::size_t cols, float* out) {
    addRows(v, rows, m, cols, out);
}
#endif

struct Variants {
    std::array<RowKernelVariant, 3> list{{{"baseline", addRowsBaseline}}};
    std::size_t count = 1;

    Variants() {
#if defined(__x86_64__) && defined(__GNUC__)
        if (__builtin_cpu_supports("avx2"))
            list[count++] = {"avx2", addRowsAvx2};
        if (__builtin_cpu_supports("avx512f"))
            list[count++] = {"avx512f", addRowsAvx512};
#endif
    }
};

Variants const& variants() {
    static Variants const all;
    return all;
}

} // namespace

std::span<RowKernelVariant const> rowKernelVariants() {
    return {variants().list.data(), variants().count};
}

RowKernel rowKernel() {
    static RowKernel const widest = rowKernelVariants().back().run;
    return widest;
}

} // namespace TALVO::UTIL_FUNCTIONS
