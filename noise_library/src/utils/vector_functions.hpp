#pragma once

#include <complex>
#include <cstddef>
#include <vector>

/// Element-wise float kernels. Input and output may be the same; vectors that receive a result are
/// resized to it. Sizes that don't fit are assertions.
namespace TALVO::UTIL_FUNCTIONS {

void vectorMultVector(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                      float* out_ptr, std::size_t outSize);
void vectorMultVector(std::vector<float> const& v1, std::vector<float> const& v2, std::vector<float>& out);
/// Scales both parts of each complex value.
void vectorMultVector(std::vector<std::complex<float>> const& cvec1, std::vector<float> const& vec2,
                      std::vector<std::complex<float>>& out);

void vectorMultScalar(float const* inData, std::size_t inSize, float scalar, float* outData,
                      std::size_t outSize);
void vectorMultScalar(std::vector<float> const& v1, float scalar, std::vector<float>& out);

void vectorPlusVector(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                      float* out_ptr, std::size_t outSize);
void vectorPlusVector(std::vector<float> const& v1, std::vector<float> const& v2, std::vector<float>& out);

void vectorMinusVector(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                       float* out_ptr, std::size_t outSize);
void vectorMinusVector(std::vector<float> const& v1, std::vector<float> const& v2, std::vector<float>& out);

void vectorSquare(float const* v1_ptr, std::size_t v1Size, float* out_ptr, std::size_t outSize);
void vectorSquare(std::vector<float> const& v1, std::vector<float>& out);

/// Root of the mean square plus 1e-6, so that it can be divided by.
float vectorRMS(float const* v1_ptr, std::size_t v1Size);
float vectorRMS(std::vector<float> const& v1);

/// out = (1 - gamma) * v2 + v1 * gamma; a gamma of one element holds for all.
void vectorSymetricSumWithCoefficient(std::vector<float> const& v1, std::vector<float> const& gamma,
                                      std::vector<float> const& v2, std::vector<float>& out);

void affectVectorBySigmoid(float const* v1_ptr, std::size_t v1Size, float* out_ptr, std::size_t outSize);
void affectVectorBySigmoid(std::vector<float> const& v1, std::vector<float>& out);

/// out = max(v1, 0) + v2.
void affectV1ByReluAddV2(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                         float* out_ptr, std::size_t outSize);
void affectV1ByReluAddV2(std::vector<float> const& v1, std::vector<float> const& v2, std::vector<float>& out);

} // namespace TALVO::UTIL_FUNCTIONS
