#include "utils/window_functions.hpp"

#include "utils/assertion.hpp"

#include <cmath>
#include <numbers>

namespace TALVO::UTIL_FUNCTIONS {
namespace {

constexpr double pi = std::numbers::pi;
constexpr char sizeText[] = "out_ptr!= nullptr && size > 1 && size == outSize";

/// The value of a raised cosine with the given middle at sample i of n.
float raisedCosine(double middle, std::size_t i, std::size_t n) {
    double const phase = 2.0 * pi * static_cast<double>(i) / static_cast<double>(n - 1);
    return static_cast<float>(middle - (1.0 - middle) * std::cos(phase));
}

} // namespace

void generateHanningWindowVector(std::size_t size, float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(out_ptr != nullptr && size > 1 && size == outSize,
                 "out_ptr != nullptr && size > 1 && size == outSize");
    for (std::size_t i = 0; i < size; ++i)
        out_ptr[i] = raisedCosine(0.5, i, size);
}

void generateHammingWindowVector(std::size_t size, float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(out_ptr != nullptr && size > 1 && size == outSize, sizeText);
    for (std::size_t i = 0; i < size; ++i)
        out_ptr[i] = raisedCosine(0.54, i, size);
}

void generateVorbisWindowVector(std::size_t size, float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(out_ptr != nullptr && size > 1 && size == outSize, sizeText);
    for (std::size_t i = 0; i < size; ++i) {
        double const s = std::sin(pi * static_cast<double>(i) / static_cast<double>(size));
        out_ptr[i] = static_cast<float>(std::sin(pi / 2.0 * s * s));
    }
}

void generateTriangularWindowVector(std::size_t size, float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(out_ptr != nullptr && size > 1 && size == outSize, sizeText);
    std::size_t const half = size / 2;
    for (std::size_t i = 0; i < half; ++i) {
        double const rise = 2.0 * static_cast<double>(i) / static_cast<double>(size);
        out_ptr[i] = static_cast<float>(rise);
        out_ptr[half + i] = static_cast<float>(1.0 - rise);
    }
    if (size % 2 == 1)
        out_ptr[size - 1] = 0.0f;
}

} // namespace TALVO::UTIL_FUNCTIONS
