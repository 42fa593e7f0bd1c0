#include "noise_canceller/cleaner_params.hpp"

#include "utils/assertion.hpp"
#include "utils/window_functions.hpp"

#include <iostream>

namespace TALVO::NOISE_CANCELLER {

void CleanerParams::fitCompressRate() {
    auto const fits = [this](std::size_t rate) {
        std::size_t const bins = filterRangeEnd - filterRangeStart;
        std::size_t const values = NOISE_CLEANER_FUNCTIONS::compressedSize(bins, rate) * previewFrames;
        return bins % (std::size_t{2} << rate) == 0 && !weight_MU.empty() && values % weight_MU.size() == 0;
    };
    if (fits(settings.compressRate) || !fits(Settings::defaultCompressRate))
        return;
    std::cout << "WARNING OF COMPRESS_RATE VALUE. IT MUST FIT THE MODEL \n DEFAULT VALUE 2" << std::endl;
    settings.compressRate = Settings::defaultCompressRate;
}

void shareVorbisWindow(CleanerParams& params, WEIGHTS::Model& model) {
    params.analysisWindowPtr = sharedWindow(model, "GEN_VorbisWindow",
                                            UTIL_FUNCTIONS::generateVorbisWindowVector, params.frameLength);
    TALVO_ASSERT(params.analysisWindowPtr, "params_.vorbisWindowPtr");
    params.synthesisWindowPtr = params.analysisWindowPtr;
    params.fftCalculatorPtr = sharedTransform(model, params.frameLength);
}

} // namespace TALVO::NOISE_CANCELLER
