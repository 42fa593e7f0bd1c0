#pragma once

#include <cstddef>
#include <span>

namespace TALVO::UTIL_FUNCTIONS {

/// out[c] += v[r] * m[r * cols + c], every output adding its products in the order of r. The order
/// is what makes the result the same on every processor, whatever the width of its registers.
using RowKernel = void (*)(float const* v, std::size_t rows, float const* m, std::size_t cols, float* out);

struct RowKernelVariant {
    char const* name;
    RowKernel run;
};

/// The variants that this processor can run, narrowest first; the first is the baseline.
std::span<RowKernelVariant const> rowKernelVariants();

/// The widest of them.
RowKernel rowKernel();

} // namespace TALVO::UTIL_FUNCTIONS
