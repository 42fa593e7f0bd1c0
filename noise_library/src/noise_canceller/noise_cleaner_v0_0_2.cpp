#include "noise_canceller/noise_cleaner_v0_0_2.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

CleanerParams readParams(WEIGHTS::Model& model, std::size_t inputFrameDuration) {
    CleanerParams params(*model.first, inputFrameDuration);
    SettingReader const reader(model, "NIMBA_", "_v0_0_2");
    params.settings.readCommon(reader);
    shareVorbisWindow(params, model);
    return params;
}

} // namespace

NoiseCleaner_v0_0_2::NoiseCleaner_v0_0_2(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : NoiseFeedbackCleaner(model, readParams(*model, inputFrameDuration)) {}

} // namespace TALVO::NOISE_CANCELLER
