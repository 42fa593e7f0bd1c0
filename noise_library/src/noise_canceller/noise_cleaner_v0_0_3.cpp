#include "noise_canceller/noise_cleaner_v0_0_3.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

CleanerParams readParams(WEIGHTS::Model& model, std::size_t inputFrameDuration) {
    CleanerParams params(*model.first, inputFrameDuration);
    SettingReader const reader(model, "NIMBA_", "_v0_0_3");
    params.settings.readCommon(reader);
    params.settings.readRescale(reader, reader.flag("ENABLE_RESCALE", true));
    shareVorbisWindow(params, model);
    return params;
}

} // namespace

NoiseCleaner_v0_0_3::NoiseCleaner_v0_0_3(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : RecurrentCleaner(model, readParams(*model, inputFrameDuration)) {}

} // namespace TALVO::NOISE_CANCELLER
