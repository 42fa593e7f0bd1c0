#pragma once

#include "utils/assertion.hpp"
#include "utils/bfloat16_rows.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace TALVO::CONTAINERS {

/// Dense row-major float matrix; a default one is 0 by 0. It may keep a bfloat16 copy of its values, half
/// as large, which is dropped as soon as they can change.
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
        data().assign(r * c, 0.0f);
    }

    /// Shapes the matrix around the values given.
    void resize(std::uint64_t r, std::uint64_t c, std::vector<float> v) {
        TALVO_ASSERT(r * c == v.size(), "r*c == v.size()");
        TALVO_ASSERT(r * c != 0 || (r == 0 && c == 0), "r*c != 0 || (r==0 && c==0)");
        rows_ = r;
        cols_ = c;
        data() = std::move(v);
    }

    /// Makes the copy if no value loses anything by it: the upper halves of the floats, the lower being zero.
    void keepBfloat16() {
        bfloat16_.clear();
        auto const bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
        if (!std::ranges::all_of(data_, [&](float value) { return (bits(value) & 0xffffu) == 0; }))
            return;
        bfloat16_ = UTIL_FUNCTIONS::bfloat16Rows(data_, cols_);
    }

    std::uint64_t rowSize() const { return rows_; }
    std::uint64_t colSize() const { return cols_; }
    bool empty() const { return data_.empty(); }
    float* row(std::uint64_t r) { return data().data() + r * cols_; }
    float const* row(std::uint64_t r) const { return data_.data() + r * cols_; }
    std::vector<float>& data() {
        bfloat16_.clear();
        return data_;
    }
    std::vector<float> const& data() const { return data_; }
    /// The copy, as bfloat16Rows() makes it; empty where there is none.
    std::vector<std::uint16_t> const& bfloat16() const { return bfloat16_; }

  private:
    std::vector<float> data_;
    std::vector<std::uint16_t> bfloat16_;
    std::uint64_t rows_ = 0;
    std::uint64_t cols_ = 0;
};

} // namespace TALVO::CONTAINERS
