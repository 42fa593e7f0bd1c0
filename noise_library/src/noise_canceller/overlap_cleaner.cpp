#include "noise_canceller/overlap_cleaner.hpp"

#include "utils/assertion.hpp"
#include "utils/vector_functions.hpp"

#include <algorithm>
#include <array>

namespace TALVO::NOISE_CANCELLER {

OverlapCleaner::OverlapCleaner(WEIGHTS::ModelPtr model, CleanerParams params, FillBound fillBound)
    : NoiseCleaner(std::move(model)), params_(std::move(params)), fillBound_(fillBound),
      inputData_(10 * params_.step), outputData_(10 * params_.step) {
    startStream();
}

void OverlapCleaner::startStream() {
    inputData_ = CONTAINERS::CyclicBlockData(10 * params_.step);
    outputData_ = CONTAINERS::CyclicBlockData(10 * params_.step);
    outputData_.push_backNULL(OverlapCleaner::latency());
    inputData_.push_backNULL(params_.step);
}

std::size_t OverlapCleaner::latency() const {
    return delay(params_.frameDuration, params_.inputFrameDuration) * params_.sampleRate / 1000;
}

bool OverlapCleaner::cleanNoise(std::vector<float>& inOutVector) {
    std::size_t const step = params_.step;
    std::size_t const n = params_.inputFrameDuration * params_.sampleRate / 1000;
    inputArrived(inOutVector);

    TALVO_ASSERT(inOutVector.size() == n,
                 "inOutVector.size() == (params_.inputFrameDuration*params_.sampleRate) / 1000");
    if (fillBound_ == FillBound::twoSteps)
        TALVO_ASSERT(outputData_.size() >= step && outputData_.size() < 2 * step,
                     "outputData_.size() >= params_.step && outputData_.size() < 2 * params_.step");
    else
        TALVO_ASSERT(outputData_.size() >= step && outputData_.size() < n + step,
                     "outputData_.size() >= params_.step && outputData_.size() < "
                     "(params_.inputFrameDuration*params_.sampleRate)/1000 +params_.step");

    inputData_.push_back(inOutVector.data(), inOutVector.size());
    while (inputData_.size() >= 2 * step) {
        inOutVector.clear();
        mainCleaner(inputData_.data(), inOutVector);
        TALVO_ASSERT(inOutVector.size() == 2 * step, "inOutVector.size() == 2 * params_.step");
        inputData_.pop_front(step);
        outputData_.push_backNULL(step);
        float* const overlap = outputData_.data() + outputData_.size() - 2 * step;
        UTIL_FUNCTIONS::vectorPlusVector(overlap, 2 * step, inOutVector.data(), 2 * step, overlap, 2 * step);
    }

    TALVO_ASSERT(outputData_.size() >= n + step,
                 "outputData_.size() >= (params_.inputFrameDuration*params_.sampleRate)/1000+params_.step");
    inOutVector.assign(outputData_.data(), outputData_.data() + n);
    outputData_.pop_front(n);
    return true;
}

std::size_t OverlapCleaner::delay(std::size_t frameDuration, std::size_t inputFrameDuration) {
    struct Row {
        std::size_t frameDuration;
        std::array<std::size_t, 6> milliseconds;
    };
    constexpr std::array<std::size_t, 6> inputs{10, 15, 20, 30, 32, 40};
    constexpr std::array<Row, 3> rows{
        {{20, {10, 15, 10, 10, 18, 10}}, {30, {25, 15, 25, 15, 29, 25}}, {32, {31, 28, 28, 30, 16, 28}}}};
    auto const row = std::ranges::find(rows, frameDuration, &Row::frameDuration);
    auto const column = std::ranges::find(inputs, inputFrameDuration);
    if (row == rows.end() || column == inputs.end())
        return 0;
    return row->milliseconds[static_cast<std::size_t>(column - inputs.begin())];
}

} // namespace TALVO::NOISE_CANCELLER
