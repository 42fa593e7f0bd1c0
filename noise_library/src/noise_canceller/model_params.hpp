#pragma once

#include "weights/model.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace TALVO::UTILS {
class FFT;
}

namespace TALVO::NOISE_CANCELLER {

/// What every model holds beside its network: sizes in samples, frames and bins.
struct ModelParams {
    ModelParams(WEIGHTS::Weight const& weight, std::size_t inputFrameMilliseconds);

    std::size_t frameLength;
    std::size_t step;
    std::size_t previewFrames; ///< frames of history that the network sees, the current one included
    std::size_t coefficientNumber;
    std::size_t filterRangeStart;
    std::size_t filterRangeEnd;
    std::size_t sampleRate;
    std::vector<float> const& weight_MU;
    std::vector<float> const& weight_SD;
    std::size_t frameDuration;      ///< milliseconds
    std::size_t inputFrameDuration; ///< milliseconds
};

/// A whole number that a size is made of; throws when it is absent or negative.
std::size_t readSize(WEIGHTS::Weight const& weight, std::string const& key);

using WindowPtr = std::shared_ptr<std::vector<float>>;
using WindowGenerator = void (*)(std::size_t size, float* out, std::size_t outSize);

/// The window that all sessions of a model share under that key; the first cleaner makes it.
WindowPtr sharedWindow(WEIGHTS::Model& model, std::string const& key, WindowGenerator generate,
                       std::size_t frameLength);
/// The transform that all sessions of a model share.
std::shared_ptr<UTILS::FFT> sharedTransform(WEIGHTS::Model& model, std::size_t frameLength);

} // namespace TALVO::NOISE_CANCELLER
