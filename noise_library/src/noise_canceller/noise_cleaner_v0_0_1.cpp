#include "noise_canceller/noise_cleaner_v0_0_1.hpp"

#include "noise_canceller/mask_functions.hpp"
#include "utils/assertion.hpp"
#include "utils/fft.hpp"
#include "utils/window_functions.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

CleanerParams readParams(WEIGHTS::Model& model, std::size_t inputFrameDuration) {
    CleanerParams params(*model.first, inputFrameDuration);
    SettingReader const reader(model, "NIMBA_", "_v0_0_1");
    params.settings.readCommon(reader);
    auto const hamming = sharedWindow(model, "GEN_HammingWindow", UTIL_FUNCTIONS::generateHammingWindowVector,
                                      params.frameLength);
    auto const triangle = sharedWindow(model, "GEN_TriangleWindow",
                                       UTIL_FUNCTIONS::generateTriangularWindowVector, params.frameLength);
    // ENABLE_WINDOW_AFTER may stand in old control files: the clip fix decides in its place.
    bool const hammingAfter = reader.text("WINDOW_AFTER", "TRIANGL") == "HAMMING";
    params.analysisWindowPtr = hamming;
    params.synthesisWindowPtr = hammingAfter ? hamming : triangle;
    params.fftCalculatorPtr = sharedTransform(model, params.frameLength);
    return params;
}

} // namespace

NoiseCleaner_v0_0_1::NoiseCleaner_v0_0_1(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : NoiseFeedbackCleaner(model, readParams(*model, inputFrameDuration)) {
    TALVO_ASSERT(params_.synthesisWindowPtr, "params_.triangleWindowPtr");
    TALVO_ASSERT(params_.analysisWindowPtr, "params_.hammingWindowPtr");
}

void NoiseCleaner_v0_0_1::synthesise(float const* frame, std::vector<float>& out) {
    if (!params_.settings.clipFix) {
        maskToTime();
        out.assign(time_.begin(), time_.end());
        return;
    }
    unwindowed_.assign(frame, frame + params_.frameLength);
    params_.fftCalculatorPtr->computeForward(unwindowed_, spectrum_);
    NoiseFeedbackCleaner::synthesise(frame, out);
}

} // namespace TALVO::NOISE_CANCELLER
