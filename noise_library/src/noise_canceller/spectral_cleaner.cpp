#include "noise_canceller/spectral_cleaner.hpp"

#include "noise_canceller/feature_functions.hpp"
#include "noise_canceller/mask_functions.hpp"
#include "utils/fft.hpp"
#include "utils/vector_functions.hpp"

#include <algorithm>
#include <cmath>

namespace TALVO::NOISE_CANCELLER {

using namespace NOISE_CLEANER_FUNCTIONS;

SpectralCleaner::SpectralCleaner(WEIGHTS::ModelPtr model, CleanerParams params, FillBound fillBound)
    : OverlapCleaner(std::move(model), std::move(params), fillBound), framesFutures_(historyCapacity()) {
    start();
}

void SpectralCleaner::makeRoom(LayerWeights const& network, std::vector<float>& state) {
    std::size_t room = std::max(params_.frameLength, framesFutures_.size());
    for (auto const* const list : {&network.weight_wl, &network.weight_wnl})
        for (CONTAINERS::Matrix const& matrix : *list)
            room = std::max({room, matrix.rowSize(), matrix.colSize()});
    for (std::vector<float>* const values : {&features_, &saved_rm, &windowed_, &time_, &buffers_.nonLinear,
                                             &buffers_.linear, &buffers_.joined, &buffers_.gate, &state})
        values->reserve(room);
    spectrum_.reserve(params_.coefficientNumber);
    masked_.reserve(params_.coefficientNumber);
}

std::size_t SpectralCleaner::historyCapacity() const {
    return (params_.filterRangeEnd - params_.filterRangeStart) * (5 * params_.previewFrames + 5);
}

void SpectralCleaner::start() {
    startStream();
    saved_rm.assign(params_.coefficientNumber, 0.0f);
    framesFutures_ = CONTAINERS::CyclicBlockData(historyCapacity());
    framesFutures_.push_backNULL(params_.frameFeatures() * params_.previewFrames);
    Settings const& settings = params_.settings;
    if (settings.threshCut)
        enTresholdPtr_ = std::make_unique<UTILS::EnThreshold>(
            10, params_.sampleRate * 4 / params_.frameLength, settings.threshCutRefEn);
    if (settings.rescale)
        meanEnergyPtr_ = std::make_unique<UTILS::MeanEnergy>(
            params_.sampleRate * 3 / params_.step, settings.rescaleRefEn,
            static_cast<double>(settings.rescaleRefAmpl * settings.rescaleRefAmpl));
}

bool SpectralCleaner::mainCleaner(float const* frame, std::vector<float>& out) {
    windowed_.resize(params_.frameLength);
    UTIL_FUNCTIONS::vectorMultVector(frame, params_.frameLength, params_.analysisWindowPtr->data(),
                                     params_.analysisWindowPtr->size(), windowed_.data(), windowed_.size());
    if (enTresholdPtr_)
        enTresholdPtr_->setCurrentData(windowed_);
    params_.fftCalculatorPtr->computeForward(windowed_, spectrum_);
    calcFeatures(frame);
    calcMask();
    calcRMAddNulles(features_, params_);
    shapeMask();
    maskReady();
    synthesise(frame, out);
    return true;
}

void SpectralCleaner::shapeMask() {
    Settings const& settings = params_.settings;
    std::vector<float>& rm = features_;
    if (settings.rmModify)
        calcRMModify(rm);
    else
        UTIL_FUNCTIONS::vectorSquare(rm, rm);
    if (settings.highFreqSmooth)
        for (std::size_t i = rm.size() / 2; i < rm.size(); ++i)
            rm[i] *= rm[i];
    calcRMSMooth(rm, saved_rm, params_);
    // What follows works on the saved mask, so that the next frame's smoothing sees its result.
    saved_rm.swap(rm);
    if (settings.rmThresholdOn)
        applyRMThreshold(saved_rm, params_);
    if (enTresholdPtr_)
        enTresholdPtr_->applyEnThreshold(saved_rm);
}

void SpectralCleaner::synthesise(float const*, std::vector<float>& out) {
    maskToTime();
    shapeTime(time_);
    UTIL_FUNCTIONS::vectorMultVector(time_, *params_.synthesisWindowPtr, out);
    if (params_.settings.clipFix)
        applyClipFix(out, params_);
}

void SpectralCleaner::maskToTime() {
    UTIL_FUNCTIONS::vectorMultVector(spectrum_, saved_rm, masked_);
    params_.fftCalculatorPtr->computeBackward(masked_, time_);
}

float SpectralCleaner::rescaleFactor(float const* frame) {
    if (!meanEnergyPtr_)
        return 1.0f;
    double const energy = meanEnergyPtr_->setCurrentData(frame, params_.frameLength);
    if (!(energy > 1e-6))
        return 1.0f;
    return static_cast<float>(static_cast<double>(params_.settings.rescaleRefAmpl) / std::sqrt(energy));
}

void SpectralCleaner::pushFeatures() {
    framesFutures_.pop_front(features_.size());
    framesFutures_.push_back(features_.data(), features_.size());
}

void SpectralCleaner::normaliseWithHistory() {
    pushFeatures();
    calcMinusMUDivSD(features_, framesFutures_, params_);
}

} // namespace TALVO::NOISE_CANCELLER
