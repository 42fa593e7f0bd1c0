#include "noise_canceller/noise_cleaner_v0_0_4.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

CleanerParams readParams(WEIGHTS::Model& model, std::size_t inputFrameDuration) {
    CleanerParams params(*model.first, inputFrameDuration);
    SettingReader const reader(model, "NIMBA_", "_v0_0_4");
    params.settings.readCommon(reader);
    params.settings.readRescale(
        reader, reader.flagStoredAs("BRELLIN_NIMBA_ENABLE_RESCALE_v0_0_4", "ENABLE_RESCALE", true));
    params.settings.readCompressRate(reader);
    params.fitCompressRate();
    shareVorbisWindow(params, model);
    return params;
}

} // namespace

NoiseCleaner_v0_0_4::NoiseCleaner_v0_0_4(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : RecurrentCleaner(model, readParams(*model, inputFrameDuration)) {}

void NoiseCleaner_v0_0_4::compress(std::vector<float>& features) {
    NOISE_CLEANER_FUNCTIONS::vectorSizeReducer(features, params_.settings.compressRate + 1);
}

void NoiseCleaner_v0_0_4::expand(std::vector<float>& mask) {
    NOISE_CLEANER_FUNCTIONS::vectorSizeEnlarger(mask, params_.settings.compressRate);
}

} // namespace TALVO::NOISE_CANCELLER
