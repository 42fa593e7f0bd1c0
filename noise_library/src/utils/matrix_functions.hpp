#pragma once

#include "utils/matrix.hpp"

#include <cstddef>
#include <vector>

/// Products with a bias. The output begins as a copy of the bias, and the products are added in
/// place in float, in the order stated, so that results can be reproduced bit by bit.
namespace TALVO::UTIL_FUNCTIONS {

using CONTAINERS::Matrix;

/// out[c] = b[c] + sum over r of vec[r] * mat[r][c], r outer. The networks use this form only.
void matMulPlusB(std::vector<float> const& vec, Matrix const& mat, std::vector<float> const& b,
                 std::vector<float>& out);
void matMulPlusB(float const* vecData, std::size_t vecSize, Matrix const& mat, std::vector<float> const& b,
                 std::vector<float>& out);
/// The bias is one row or one column, as long as the output.
void matMulPlusB(std::vector<float> const& vec, Matrix const& mat, Matrix const& b, std::vector<float>& out);

/// out[r] = b[r] + sum over c of vec[c] * mat[r][c], r outer.
void matMulPlusB(Matrix const& mat, std::vector<float> const& vec, std::vector<float> const& b,
                 std::vector<float>& out);
void matMulPlusB(Matrix const& mat, float const* vecData, std::size_t vecSize, std::vector<float> const& b,
                 std::vector<float>& out);
void matMulPlusB(Matrix const& mat, std::vector<float> const& vec, Matrix const& b, std::vector<float>& out);

/// out = m1 * m2 + b for a square m2; an empty output is shaped first.
void matMulPlusB(Matrix const& m1, Matrix const& m2, Matrix const& b, Matrix& out);

} // namespace TALVO::UTIL_FUNCTIONS
