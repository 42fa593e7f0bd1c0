#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TALVO::UTILS {

/// The mean energy of the last loud frames; a frame below the reference leaves it alone, so that a
/// pause doesn't change a level that was found in speech.
class MeanEnergy {
  public:
    /// `initial` is the first element of the average, and stays in it until it is overwritten.
    MeanEnergy(std::size_t maxValues, float refEnergy, double initial);

    /// The new estimate.
    double setCurrentData(float const* data, std::size_t dataSize);
    /// The mean of squares, in double.
    static double calculateMeanEnergy(float const* data, std::size_t dataSize);

    std::size_t valueCount() const { return values_.size(); }

  private:
    std::uint64_t maxValues_;
    float refEnergy_;
    std::vector<double> values_;
    double sum_;
    std::uint64_t next_ = 0;
};

} // namespace TALVO::UTILS
