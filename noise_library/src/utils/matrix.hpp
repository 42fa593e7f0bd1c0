#pragma once

#include "utils/assertion.hpp"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace TALVO::CONTAINERS {

/// Dense row-major float matrix; a default one is 0 by 0.
class Matrix {
  public:
    Matrix() = default;
    Matrix(std::uint64_t rows, std::uint64_t cols) { initParams(rows, cols); }
    Matrix(std::uint64_t rows, std::uint64_t cols, std::vector<float> values) {
        resize(rows, cols, std::move(values));
    }

    /// Shapes the matrix and fills it with zeros.
    void initParams(std::uint64_t r, std::uint64_t c) {
        TALVO_ASSERT(r * c != 0 || (r == 0 && c == 0), "r*c != 0 || (r==0 && c==0)");
        rows_ = r;
        cols_ = c;
        data_.assign(r * c, 0.0f);
    }

    /// Shapes the matrix around the values given.
    void resize(std::uint64_t r, std::uint64_t c, std::vector<float> v) {
        TALVO_ASSERT(r * c == v.size(), "r*c == v.size()");
        TALVO_ASSERT(r * c != 0 || (r == 0 && c == 0), "r*c != 0 || (r==0 && c==0)");
        rows_ = r;
        cols_ = c;
        data_ = std::move(v);
    }

    std::uint64_t rowSize() const { return rows_; }
    std::uint64_t colSize() const { return cols_; }
    bool empty() const { return data_.empty(); }
    float* row(std::uint64_t r) { return data_.data() + r * cols_; }
    float const* row(std::uint64_t r) const { return data_.data() + r * cols_; }
    std::vector<float>& data() { return data_; }
    std::vector<float> const& data() const { return data_; }

  private:
    std::vector<float> data_;
    std::uint64_t rows_ = 0;
    std::uint64_t cols_ = 0;
};

} // namespace TALVO::CONTAINERS
