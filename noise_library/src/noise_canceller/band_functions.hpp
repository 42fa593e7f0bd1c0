#pragma once

#include <cstddef>
#include <vector>

/// Compression of a spectrum into bands that widen towards high frequencies, and back.
namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {

/// Values that `size` bins give at a rate: (rate + 2) * size / 2^(rate + 1).
constexpr std::size_t compressedSize(std::size_t size, std::size_t rate) {
    return (rate + 2) * size >> (rate + 1);
}

/// Keeps the bins below 2 * size / 2^coefficient, and sums those above in groups of 2, 4, ...
void vectorSizeReducer(std::vector<float>& data, std::size_t coefficient);

/// The same with the mean of each group; the data may have one bin more, which is kept at the front.
void vectorSizeReducerMean(std::vector<float>& data, std::size_t coefficient);

/// Copies each band value to all bins that it stands for.
void vectorSizeEnlarger(std::vector<float>& data, std::size_t rate);

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
