#include "utils/mean_energy.hpp"

#include "utils/assertion.hpp"

#include <numeric>

namespace TALVO::UTILS {

MeanEnergy::MeanEnergy(std::size_t maxValues, float refEnergy, double initial)
    : maxValues_(maxValues), refEnergy_(refEnergy), sum_(initial) {
    values_.reserve(maxValues);
    values_.push_back(initial);
}

double MeanEnergy::setCurrentData(float const* data, std::size_t dataSize) {
    double const energy = calculateMeanEnergy(data, dataSize);
    if (energy >= static_cast<double>(refEnergy_)) {
        if (values_.size() < maxValues_) {
            values_.push_back(energy);
            sum_ += energy;
        } else {
            values_[next_] = energy;
            next_ = (next_ + 1) % values_.size();
            sum_ = std::accumulate(values_.begin(), values_.end(), 0.0);
        }
    }
    return sum_ / static_cast<double>(values_.size());
}

double MeanEnergy::calculateMeanEnergy(float const* data, std::size_t dataSize) {
    TALVO_ASSERT(dataSize > 1, "dataSize > 1");
    double sum = 0.0;
    for (std::size_t i = 0; i < dataSize; ++i)
        sum += static_cast<double>(data[i]) * static_cast<double>(data[i]);
    return sum / static_cast<double>(dataSize);
}

} // namespace TALVO::UTILS
