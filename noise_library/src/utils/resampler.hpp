#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace TALVO::UTILS {

/// Converts a stream frame by frame at a fixed ratio, every frame giving exactly as many samples as
/// the ratio says. The filter's start-up latency becomes silence before the first sound. The method
/// is that of J. O. Smith and P. Gossett, "A flexible sampling-rate conversion method", 1984.
class Resampler {
  public:
    Resampler(std::size_t inCount, std::size_t outCount);

    /// The count that the converter produced. With equal counts a copy, without any delay; otherwise
    /// the two vectors must not be the same.
    int resample(std::vector<float> const& in, std::vector<float>& out);
    int resample(float const* in, int inCount, float* out, int outCount);
    void reset();

    /// Samples kept for the next frame.
    std::uint32_t carry() const { return carry_; }

  private:
    struct Close {
        void operator()(void* handle) const;
    };

    void open();

    std::unique_ptr<void, Close> handle_;
    double ratio_;
    std::uint32_t extra_ = 1024;
    std::uint32_t carry_ = 0;
    bool first_ = true;
    std::vector<float> buffer_;
};

} // namespace TALVO::UTILS
