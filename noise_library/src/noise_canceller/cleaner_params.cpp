#include "noise_canceller/cleaner_params.hpp"

#include "utils/assertion.hpp"
#include "utils/window_functions.hpp"

namespace TALVO::NOISE_CANCELLER {

void shareVorbisWindow(CleanerParams& params, WEIGHTS::Model& model) {
    params.analysisWindowPtr = sharedWindow(model, "GEN_VorbisWindow",
                                            UTIL_FUNCTIONS::generateVorbisWindowVector, params.frameLength);
    TALVO_ASSERT(params.analysisWindowPtr, "params_.vorbisWindowPtr");
    params.synthesisWindowPtr = params.analysisWindowPtr;
    params.fftCalculatorPtr = sharedTransform(model, params.frameLength);
}

} // namespace TALVO::NOISE_CANCELLER
