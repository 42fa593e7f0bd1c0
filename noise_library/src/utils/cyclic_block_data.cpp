#include "utils/cyclic_block_data.hpp"

#include "utils/assertion.hpp"

#include <algorithm>

namespace TALVO::CONTAINERS {

CyclicBlockData::CyclicBlockData(std::size_t size) {
    TALVO_ASSERT(size != 0, "size!=0");
    data_.resize(size + 1);
}

void CyclicBlockData::push_back(float const* p, std::size_t n) { std::copy_n(p, n, grow(n)); }

void CyclicBlockData::push_back(short const* p, std::size_t n) { std::copy_n(p, n, grow(n)); }

void CyclicBlockData::push_backNULL(std::size_t n) { std::fill_n(grow(n), n, 0.0f); }

void CyclicBlockData::pop_front(std::size_t n) {
    startindx_ += n;
    TALVO_ASSERT(startindx_ <= endindx_, "startindx_ <= endindx_");
}

/// Room for n more samples; checked before they are written, so that a wrong size can't overrun.
float* CyclicBlockData::grow(std::size_t n) {
    if (n > data_.size() - endindx_) {
        TALVO_ASSERT(startindx_ > size(), "startindx_ > size()");
        std::copy_n(data_.begin() + static_cast<std::ptrdiff_t>(startindx_), size(), data_.begin());
        endindx_ = size();
        startindx_ = 0;
    }
    TALVO_ASSERT(n < data_.size() && data_.size() > 2 * (size() + n), "data_.size() > 2*size()");
    float* const place = data_.data() + endindx_;
    endindx_ += n;
    return place;
}

} // namespace TALVO::CONTAINERS
