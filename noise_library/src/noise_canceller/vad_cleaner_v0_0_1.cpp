#include "noise_canceller/vad_cleaner_v0_0_1.hpp"

#include "noise_canceller/band_functions.hpp"
#include "noise_canceller/feature_functions.hpp"
#include "noise_canceller/setting_reader.hpp"
#include "utils/assertion.hpp"
#include "utils/fft.hpp"
#include "utils/mean_energy.hpp"
#include "utils/printed_line.hpp"
#include "utils/vector_functions.hpp"
#include "utils/window_functions.hpp"

#include <algorithm>
#include <cmath>

namespace TALVO::NOISE_CANCELLER {

using namespace NOISE_CLEANER_FUNCTIONS;

namespace {

constexpr std::size_t compressRate = 2;

/// The compression takes one bin more than its groups divide.
std::size_t compressedBins(std::size_t bins) {
    std::size_t const extra = bins % (std::size_t{1} << (compressRate + 1)) == 0 ? 0 : 1;
    return compressedSize(bins - extra, compressRate) + extra;
}

} // namespace

VadCleaner_v0_0_1::Params::Params(WEIGHTS::Model& model, std::size_t inputFrameMilliseconds)
    : ModelParams(*model.first, inputFrameMilliseconds), GatedWeights(*model.first),
      frameCount(previewFrames), frameFutureSize(compressedBins(coefficientNumber)) {
    WEIGHTS::Weight const& weight = *model.first;
    if (auto const floor = weight.find<float>("SD_FLOOR"))
        varianceFloor = *floor;
    if (auto const minMax = weight.find<std::vector<float>>("Test_MINMAX"))
        testMinMax = *minMax;
    stateReset = SettingReader(model, "NIMBA_", "_v0_0_1").flag("VAD_ENABLE_STATE_RESET", false);
    hammingWindowPtr =
        sharedWindow(model, "GEN_HammingWindow", UTIL_FUNCTIONS::generateHammingWindowVector, frameLength);
    fftCalculatorPtr = sharedTransform(model, frameLength);
}

VadCleaner_v0_0_1::VadCleaner_v0_0_1(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : NoiseCleaner(model), params_(*model, inputFrameDuration), inputBlock_(params_.frameLength * 5),
      framesFutures_((params_.frameCount * 5 + 5) * params_.frameFutureSize),
      state_(params_.stateSize, 0.0f) {
    std::size_t const input = params_.inputFrameDuration * params_.sampleRate / 1000;
    if (input > params_.frameLength)
        UTILS::printLine("ERROR FRAMEDURATIONS");
    else
        inputBlock_.push_backNULL(params_.frameLength - input);
    framesFutures_.push_backNULL(params_.frameCount * params_.frameFutureSize);
    if (params_.stateReset)
        flags_.reserve(params_.windowLen);
}

bool VadCleaner_v0_0_1::cleanNoise(std::vector<float>& inOutVector) {
    std::size_t const size = inOutVector.size();
    TALVO_ASSERT(size == params_.inputFrameDuration * params_.sampleRate / 1000,
                 "inOutVector.size() == (params_.inputFrameDuration*params_.sampleRate) / 1000");
    double const coefficient = avcVol_.getRescaleCoef(inOutVector.data(), size);
    inputBlock_.push_backNULL(size);
    float* const place = inputBlock_.data() + inputBlock_.size() - size;
    for (std::size_t i = 0; i < size; ++i)
        place[i] = static_cast<float>(static_cast<double>(inOutVector[i]) * coefficient);
    float const probability = probabilityCalc(inputBlock_.data(), inputBlock_.size());
    inputBlock_.pop_front(size);
    inOutVector.assign(1, calibrated(probability));
    return true;
}

/// Maps the model's best threshold to 0.5, and its least and greatest results to 0 and 1.
float VadCleaner_v0_0_1::calibrated(float probability) const {
    if (params_.testMinMax.size() < 3)
        return probability;
    float const least = params_.testMinMax[0];
    float const best = params_.testMinMax[1];
    float const greatest = params_.testMinMax[2];
    float const q = probability >= best ? (probability - best) * 0.5f / (greatest - best) + 0.5f
                                        : (probability - least) * 0.5f / (best - least);
    // In this order a result that is no number becomes the least.
    return std::min(std::max(1e-5f, q), 0.99999f);
}

float VadCleaner_v0_0_1::probabilityCalc(float const* data, std::size_t dataSize) {
    TALVO_ASSERT(dataSize == params_.frameLength, "dataSize == params_.frameLength");
    tempVector_.resize(dataSize);
    UTIL_FUNCTIONS::vectorMultVector(data, dataSize, params_.hammingWindowPtr->data(),
                                     params_.hammingWindowPtr->size(), tempVector_.data(),
                                     tempVector_.size());
    params_.fftCalculatorPtr->computeForward(tempVector_, spectrum_);
    tempVector_.resize(spectrum_.size());
    for (std::size_t i = 0; i < spectrum_.size(); ++i)
        tempVector_[i] =
            spectrum_[i].real() * spectrum_[i].real() + spectrum_[i].imag() * spectrum_[i].imag();
    TALVO_ASSERT(tempVector_.size() == params_.coefficientNumber,
                 "tempVector.size()==params_.coefficientNumber");
    vectorSizeReducerMean(tempVector_, compressRate + 1);
    TALVO_ASSERT(tempVector_.size() == params_.frameFutureSize, "tempVector.size()==params_.frameFutureSize");
    for (float& value : tempVector_)
        value = std::log(value + 1.0f);
    calcMinusMUDivSD(tempVector_, params_, params_.varianceFloor);
    framesFutures_.pop_front(tempVector_.size());
    framesFutures_.push_back(tempVector_.data(), tempVector_.size());
    TALVO_ASSERT(framesFutures_.size() == params_.frameCount * params_.frameFutureSize,
                 "framesFutures_.size()==params_.frameCount*params_.frameFutureSize");
    tempVector_.assign(framesFutures_.data(), framesFutures_.data() + framesFutures_.size());
    calcRMForwardProp_GRU_VAD_Modify(state_, tempVector_, params_, buffers_);
    TALVO_ASSERT(state_.size() == params_.stateSize && tempVector_.size() == 1,
                 "state_.size()==params_.stateSize && tempVector.size() == 1");
    if (params_.stateReset)
        state_reset_functionality(tempVector_[0]);
    return tempVector_[0];
}

/// A long stretch of low output clears the network's memory, so that the detector doesn't stay stuck.
void VadCleaner_v0_0_1::state_reset_functionality(float rawOutput) {
    double const s = 1.0 / (1.0 + std::exp(-static_cast<double>(rawOutput)));
    bool const flag = params_.probabilityLimit > s;
    if (flags_.size() < params_.windowLen) {
        flags_.push_back(flag);
    } else {
        setFlags_ -= flags_[nextFlag_] ? 1 : 0;
        flags_[nextFlag_] = flag;
        nextFlag_ = (nextFlag_ + 1) % flags_.size();
    }
    setFlags_ += flag ? 1 : 0;
    ++frames_;
    if (static_cast<double>(setFlags_) > static_cast<double>(flags_.size()) * params_.ratio &&
        frames_ >= params_.minFrames) {
        state_.assign(params_.stateSize, 0.0f);
        frames_ = 0;
    }
}

double VadCleaner_v0_0_1::AvcVol::getRescaleCoef(float const* data, std::size_t size) {
    double const e = UTILS::MeanEnergy::calculateMeanEnergy(data, size);
    if (e >= minEnergy_) {
        // A jump to more than the limit is taken almost at once, anything else moves the level slowly.
        if (e > limit_ * energy_)
            energy_ = e * alpha_ + energy_ * (1.0 - alpha_);
        else
            energy_ = e * (1.0 - alpha_) + energy_ * alpha_;
    }
    return target_ / (std::sqrt(energy_) + 1e-7);
}

} // namespace TALVO::NOISE_CANCELLER
