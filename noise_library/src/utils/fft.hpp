#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace TALVO::UTILS {

/// Real Fourier transform of a fixed even size. The sessions of a model share one object, and may
/// run it at the same moment.
class FFT {
  public:
    static std::shared_ptr<FFT> create(std::size_t size);

    /// Unscaled, size / 2 + 1 bins.
    virtual void computeForward(std::vector<float> const& in, std::vector<std::complex<float>>& out) = 0;
    virtual void computeForward(float const* in, std::size_t inSize, std::complex<float>* out,
                                std::size_t outSize) = 0;
    /// Scaled by 1 / size, so that it undoes the forward form.
    virtual void computeBackward(std::vector<std::complex<float>> const& in, std::vector<float>& out) = 0;
    /// Unscaled.
    virtual void computeBackward(std::complex<float> const* in, std::size_t inSize, float* out,
                                 std::size_t outSize) = 0;
    virtual ~FFT() = default;

    std::uint64_t size() const { return size_; }

  protected:
    explicit FFT(std::uint64_t size) : size_(size) {}

  private:
    std::uint64_t size_;
};

} // namespace TALVO::UTILS
