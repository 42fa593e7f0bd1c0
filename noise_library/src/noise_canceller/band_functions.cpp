#include "noise_canceller/band_functions.hpp"

#include "utils/assertion.hpp"

namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS {
namespace {

enum class Group { sum, mean };

/// Compresses what lies behind the first `kept` values, `extra` of which stand before the spectrum
/// that the groups divide.
void reduce(std::vector<float>& data, std::size_t kept, std::size_t extra, Group group) {
    std::size_t end = kept;
    std::size_t width = 2;
    std::size_t boundary = 2 * (kept - extra);
    for (std::size_t i = kept; i < data.size(); i += width) {
        if (i - extra == boundary) {
            boundary *= 2;
            width *= 2;
        }
        float sum = 0.0f;
        for (std::size_t k = i; k < i + width; ++k)
            sum += data[k];
        data[end++] = group == Group::sum ? sum : sum / static_cast<float>(width);
    }
    TALVO_ASSERT(end <= data.size(), "end<=data.size()");
    data.resize(end);
}

} // namespace

void vectorSizeReducer(std::vector<float>& data, std::size_t coefficient) {
    std::size_t const twoexpcoef = std::size_t{1} << coefficient;
    TALVO_ASSERT(data.size() % twoexpcoef == 0, "data.size()%twoexpcoef==0");
    reduce(data, 2 * data.size() / twoexpcoef, 0, Group::sum);
}

void vectorSizeReducerMean(std::vector<float>& data, std::size_t coefficient) {
    std::size_t const twoexpcoef = std::size_t{1} << coefficient;
    TALVO_ASSERT(data.size() % twoexpcoef == 0 || (data.size() - 1) % twoexpcoef == 0,
                 "data.size()%twoexpcoef==0 || (data.size()-1)%twoexpcoef==0");
    std::size_t const extra = data.size() % twoexpcoef == 0 ? 0 : 1;
    reduce(data, 2 * (data.size() - extra) / twoexpcoef + extra, extra, Group::mean);
}

void vectorSizeEnlarger(std::vector<float>& data, std::size_t rate) {
    TALVO_ASSERT(data.size() % (2 + rate) == 0, "data.size()%(2+rate)==0");
    std::size_t i = data.size();
    data.resize((data.size() << (rate + 1)) / (rate + 2));
    std::size_t end = data.size();
    // The widest groups fill the upper half, those half as wide the quarter below, and so on.
    for (std::size_t width = std::size_t{1} << rate; width > 1; width /= 2)
        for (std::size_t const lower = end / 2; end > lower;) {
            TALVO_ASSERT(end > 0 && end >= i - 1, "end>0 && end>=i-1");
            float const value = data[--i];
            for (std::size_t k = 0; k < width; ++k)
                data[--end] = value;
        }
}

} // namespace TALVO::NOISE_CANCELLER::NOISE_CLEANER_FUNCTIONS
