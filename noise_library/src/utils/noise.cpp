#include "utils/noise.hpp"

#include "utils/assertion.hpp"
#include "utils/vector_functions.hpp"

#include <algorithm>

namespace TALVO::UTILS {

Noise::Noise(std::size_t size, std::size_t blockSize)
    : size_(size), blockSize_(blockSize), mean_(blockSize, 0.0f) {}

void Noise::addFrameNoise(float const* frame, std::size_t size) {
    TALVO_ASSERT(frame != nullptr, "frame != NULL");
    TALVO_ASSERT(size == blockSize_, "size==blockSize_");
    TALVO_ASSERT(listFrameNoise_.size() <= size, "listFrameNoise_.size()<=size");
    listFrameNoise_.emplace_front(frame, frame + size);
}

void Noise::addNullFrameNoise() {
    TALVO_ASSERT(listFrameNoise_.size() <= size_, "listFrameNoise_.size()<=size_");
    listFrameNoise_.emplace_front(blockSize_, 0.0f);
}

void Noise::addFrameNoiseRemoveBack(float const* frame, std::size_t size) {
    TALVO_ASSERT(frame != nullptr, "frame != NULL");
    TALVO_ASSERT(size == blockSize_, "size==blockSize_");
    moveBackToFront();
    std::copy_n(frame, size, listFrameNoise_.front().begin());
}

void Noise::addNullFrameNoiseRemoveBack() {
    moveBackToFront();
    std::fill(listFrameNoise_.front().begin(), listFrameNoise_.front().end(), 0.0f);
}

void Noise::removeBackFrameInfoFromMean() {
    UTIL_FUNCTIONS::vectorMinusVector(mean_, listFrameNoise_.back(), mean_);
}

void Noise::calculateNoise() {
    std::vector<float>& newest = listFrameNoise_.front();
    for (float& value : newest)
        value /= static_cast<float>(size_);
    UTIL_FUNCTIONS::vectorPlusVector(mean_, newest, mean_);
}

/// The oldest frame's room serves the newest, so that nothing is allocated.
void Noise::moveBackToFront() {
    removeBackFrameInfoFromMean();
    listFrameNoise_.splice(listFrameNoise_.begin(), listFrameNoise_, std::prev(listFrameNoise_.end()));
}

} // namespace TALVO::UTILS
