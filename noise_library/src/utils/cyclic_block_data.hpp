#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TALVO::CONTAINERS {

/// Sliding window over a float stream: a linear buffer whose live block is moved back to the start
/// when its end is reached, so that the oldest samples can be handed to a kernel without a copy.
/// The capacity must be a little over twice the largest live size.
class CyclicBlockData {
  public:
    explicit CyclicBlockData(std::size_t size);

    void push_back(float const* p, std::size_t n);
    /// 16-bit samples keep their scale.
    void push_back(short const* p, std::size_t n);
    void push_backNULL(std::size_t n);
    void pop_front(std::size_t n);

    std::size_t size() const { return endindx_ - startindx_; }
    /// The oldest live sample.
    float* data() { return data_.data() + startindx_; }
    float const* data() const { return data_.data() + startindx_; }

  private:
    float* grow(std::size_t n);

    std::vector<float> data_;
    std::uint64_t startindx_ = 0;
    std::uint64_t endindx_ = 0;
};

} // namespace TALVO::CONTAINERS
