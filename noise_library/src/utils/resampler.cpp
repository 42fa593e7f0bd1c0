#include "utils/resampler.hpp"

#include <algorithm>
#include <libresample.h>

namespace TALVO::UTILS {

void Resampler::Close::operator()(void* handle) const { resample_close(handle); }

Resampler::Resampler(std::size_t inCount, std::size_t outCount)
    : ratio_(static_cast<double>(outCount) / static_cast<double>(inCount)) {
    open();
    buffer_.resize(extra_ + outCount);
}

void Resampler::open() {
    // Closed first: two filter tables at once would be needless.
    handle_.reset();
    if (ratio_ != 1.0)
        handle_.reset(resample_open(1, ratio_, ratio_));
}

int Resampler::resample(std::vector<float> const& in, std::vector<float>& out) {
    if (ratio_ == 1.0) {
        if (&out != &in)
            out.assign(in.begin(), in.end());
        return static_cast<int>(out.size());
    }
    auto const expected = static_cast<std::size_t>(ratio_ * static_cast<double>(in.size()));
    buffer_.resize(extra_ + expected);
    out.resize(expected);
    int const result = resample(in.data(), static_cast<int>(in.size()), buffer_.data() + carry_,
                                static_cast<int>(buffer_.size() - carry_));
    auto const produced = static_cast<std::size_t>(result);
    auto const source = buffer_.begin();

    if (first_) {
        first_ = false;
        carry_ = 1;
        // One sample stays behind, so that a later frame that comes out one short can be filled.
        std::size_t const taken = std::min(produced == 0 ? 0 : produced - 1, expected);
        auto const rest = std::fill_n(out.begin(), expected - taken, 0.0f);
        std::copy_n(source, taken, rest);
        buffer_[0] = produced == 0 ? 0.0f : buffer_[produced - 1];
        return result;
    }

    std::size_t const available = carry_ + produced;
    std::size_t const taken = std::min(available, expected);
    std::copy_n(source, taken, out.begin());
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(taken), out.end(), 0.0f);
    std::copy(source + static_cast<std::ptrdiff_t>(taken), source + static_cast<std::ptrdiff_t>(available),
              source);
    carry_ = static_cast<std::uint32_t>(available - taken);
    return result;
}

int Resampler::resample(float const* in, int inCount, float* out, int outCount) {
    int used = 0;
    int produced = 0;
    for (;;) {
        int consumed = 0;
        // The library's interface lacks the const; it only reads the input.
        int const result =
            resample_process(handle_.get(), ratio_, const_cast<float*>(in) + used, inCount - used, 0,
                             &consumed, out + produced, outCount - produced);
        used += consumed;
        produced += std::max(result, 0);
        bool const stuck = result == 0 && consumed == 0;
        if (result < 0 || stuck || (result == 0 && used >= inCount))
            return produced;
    }
}

void Resampler::reset() {
    open();
    first_ = true;
}

} // namespace TALVO::UTILS
