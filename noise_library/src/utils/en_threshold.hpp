#pragma once

#include <cstddef>
#include <list>
#include <vector>

namespace TALVO::UTILS {

/// A slow gate: compares the energy of the last frames with the long average of loud ones, and
/// closes on what is far below it.
class EnThreshold {
  public:
    EnThreshold(std::size_t shortCount, std::size_t longCount, float refEnergy);

    void setCurrentData(std::vector<float> const& mixData);
    void applyEnThreshold(std::vector<float>& rm) const;

    float gain() const { return gain_; }

  private:
    std::size_t shortCount_;
    std::size_t longCount_;
    float refEnergy_;
    std::list<double> shortList_;
    std::list<double> longList_;
    double shortSum_ = 0.0;
    double longSum_ = 0.0;
    std::size_t longFill_ = 0;
    float gain_ = 1.0f;
};

} // namespace TALVO::UTILS
