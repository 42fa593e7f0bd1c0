#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace TALVO::UTIL_FUNCTIONS {

/// out[c] += v[r] * m[r * cols + c], every output adding its products in the order of r. The order
/// is what makes the result the same on every processor, whatever the width of its registers.
template <class Weight>
using RowKernel = void (*)(float const* v, std::size_t rows, Weight const* m, std::size_t cols, float* out);

struct RowKernelVariant {
    char const* name;
    RowKernel<float> run;
    /// The same from bfloat16Rows(), each number widened to the float that it stands for.
    RowKernel<std::uint16_t> runBfloat16;
};

/// The variants that this processor can run, narrowest first; the first is the baseline.
std::span<RowKernelVariant const> rowKernelVariants();

/// The widest of them.
RowKernelVariant const& rowKernel();

} // namespace TALVO::UTIL_FUNCTIONS
