#pragma once

#include <cstddef>
#include <list>
#include <vector>

namespace TALVO::UTILS {

/// The sliding mean of the last noise frames. A frame is put in first and its share added to the mean
/// by calculateNoise; what is taken out is then a subtraction.
class Noise {
  public:
    /// `size` frames of `blockSize` bins. The object starts empty.
    Noise(std::size_t size, std::size_t blockSize);

    void addFrameNoise(float const* frame, std::size_t size);
    void addNullFrameNoise();
    /// These first take the oldest frame out.
    void addFrameNoiseRemoveBack(float const* frame, std::size_t size);
    void addNullFrameNoiseRemoveBack();
    /// Subtracts the oldest frame's share from the mean.
    void removeBackFrameInfoFromMean();
    /// Turns the newest frame into its share and adds that to the mean.
    void calculateNoise();

    std::vector<float> const& getNoise() const { return mean_; }

  private:
    void moveBackToFront();

    std::size_t size_;
    std::size_t blockSize_;
    std::vector<float> mean_;
    std::list<std::vector<float>> listFrameNoise_;
};

} // namespace TALVO::UTILS
