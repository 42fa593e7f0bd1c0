#pragma once

#include <cstddef>

/// Windows of `size` samples into `out_ptr`, evaluated in double.
namespace TALVO::UTIL_FUNCTIONS {

void generateHanningWindowVector(std::size_t size, float* out_ptr, std::size_t outSize);
void generateHammingWindowVector(std::size_t size, float* out_ptr, std::size_t outSize);
/// Power-complementary at 50 % overlap: applied before and after the transforms it gives back the
/// signal with no further gain (Xiph.Org Foundation, "Vorbis I", section 4.3.1).
void generateVorbisWindowVector(std::size_t size, float* out_ptr, std::size_t outSize);
void generateTriangularWindowVector(std::size_t size, float* out_ptr, std::size_t outSize);

} // namespace TALVO::UTIL_FUNCTIONS
