#include "utils/matrix_functions.hpp"

#include "utils/row_kernel.hpp"

#include <algorithm>

namespace TALVO::UTIL_FUNCTIONS {
namespace {

void addRows(float const* vec, Matrix const& mat, float* out) {
    RowKernelVariant const& kernel = rowKernel();
    if (auto const& weights = mat.bfloat16(); !weights.empty())
        kernel.runBfloat16(vec, mat.rowSize(), weights.data(), mat.colSize(), out);
    else
        kernel.run(vec, mat.rowSize(), mat.row(0), mat.colSize(), out);
}

void addColumns(Matrix const& mat, float const* vec, float* out) {
    for (std::size_t r = 0; r < mat.rowSize(); ++r) {
        float const* const row = mat.row(r);
        for (std::size_t c = 0; c < mat.colSize(); ++c)
            out[r] += vec[c] * row[c];
    }
}

bool biasFits(Matrix const& b, std::vector<float> const& out) {
    return (b.rowSize() == 1 && b.colSize() == out.size()) || (b.colSize() == 1 && b.rowSize() == out.size());
}

constexpr char biasText[] =
    "(b.rowSize()==1 && b.colSize()==out.size()) || (b.colSize()==1 && b.rowSize()==out.size())";

/// The inner count is the column count of m2, so that only a square m2 gives the full product; it
/// ends at the matrices' edge where m2 is wider than high.
void sgemmCall(Matrix const& m1, Matrix const& m2, Matrix const& b, Matrix& out) {
    if (out.empty())
        out.initParams(m1.rowSize(), m2.colSize());
    TALVO_ASSERT(m1.colSize() == m2.rowSize() && m1.rowSize() == out.rowSize() &&
                     m2.colSize() == out.colSize(),
                 "m1.colSize()==m2.rowSize() && m1.rowSize()==out.rowSize() && m2.colSize()==out.colSize()");
    TALVO_ASSERT(b.data().size() == out.data().size(), "b.data().size()==out.data().size()");
    std::copy(b.data().begin(), b.data().end(), out.data().begin());
    std::size_t const inner = std::min(m2.colSize(), m2.rowSize());
    for (std::size_t r = 0; r < m1.rowSize(); ++r)
        for (std::size_t c = 0; c < m2.colSize(); ++c)
            for (std::size_t k = 0; k < inner; ++k)
                out.row(r)[c] += m1.row(r)[k] * m2.row(k)[c];
}

} // namespace

void matMulPlusB(std::vector<float> const& vec, Matrix const& mat, std::vector<float> const& b,
                 std::vector<float>& out) {
    TALVO_ASSERT(mat.rowSize() == vec.size() && vec.size() != 0 && b.size() == mat.colSize(),
                 "mat.rowSize()==vec.size() && vec.size()!=0 && b.size()==mat.colSize()");
    out = b;
    addRows(vec.data(), mat, out.data());
}

void matMulPlusB(float const* vecData, std::size_t vecSize, Matrix const& mat, std::vector<float> const& b,
                 std::vector<float>& out) {
    TALVO_ASSERT(mat.rowSize() == vecSize && vecSize != 0 && b.size() == mat.colSize() && vecData != nullptr,
                 "mat.rowSize()==vecSize && vecSize!=0 && b.size()==mat.colSize() && vecData!= nullptr");
    out = b;
    addRows(vecData, mat, out.data());
}

void matMulPlusB(std::vector<float> const& vec, Matrix const& mat, Matrix const& b, std::vector<float>& out) {
    TALVO_ASSERT(mat.rowSize() == vec.size() && vec.size() != 0,
                 "mat.rowSize()==vec.size() && vec.size()!=0");
    out.resize(mat.colSize());
    TALVO_ASSERT(biasFits(b, out), biasText);
    out = b.data();
    addRows(vec.data(), mat, out.data());
}

void matMulPlusB(Matrix const& mat, std::vector<float> const& vec, std::vector<float> const& b,
                 std::vector<float>& out) {
    TALVO_ASSERT(mat.colSize() == vec.size() && vec.size() != 0, "mat.colSize()==vec.size() &&vec.size()!=0");
    out.resize(mat.rowSize());
    TALVO_ASSERT(b.size() == out.size(), "b.size()==out.size()");
    out = b;
    addColumns(mat, vec.data(), out.data());
}

void matMulPlusB(Matrix const& mat, float const* vecData, std::size_t vecSize, std::vector<float> const& b,
                 std::vector<float>& out) {
    TALVO_ASSERT(mat.colSize() == vecSize && vecSize != 0, "mat.colSize()==vecSize &&vecSize!=0");
    out.resize(mat.rowSize());
    TALVO_ASSERT(b.size() == out.size(), "b.size()==out.size()");
    out = b;
    addColumns(mat, vecData, out.data());
}

void matMulPlusB(Matrix const& mat, std::vector<float> const& vec, Matrix const& b, std::vector<float>& out) {
    TALVO_ASSERT(mat.colSize() == vec.size() && vec.size() != 0,
                 "mat.colSize()==vec.size() && vec.size()!=0");
    out.resize(mat.rowSize());
    TALVO_ASSERT(biasFits(b, out), biasText);
    out = b.data();
    addColumns(mat, vec.data(), out.data());
}

void matMulPlusB(Matrix const& m1, Matrix const& m2, Matrix const& b, Matrix& out) {
    TALVO_ASSERT(m1.colSize() == m2.rowSize() && m1.colSize() != 0 && m1.rowSize() != 0 && m2.colSize() != 0,
                 "m1.colSize()==m2.rowSize() && m1.colSize()!=0 && m1.rowSize()!=0 && m2.colSize()!=0");
    TALVO_ASSERT(out.empty() || (m1.rowSize() == out.rowSize() && m2.colSize() == out.colSize()),
                 "m1.rowSize() == out.rowSize() && m2.colSize()==out.colSize()");
    sgemmCall(m1, m2, b, out);
}

} // namespace TALVO::UTIL_FUNCTIONS
