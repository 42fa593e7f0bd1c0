#include "noise_canceller/noise_cleaner_v0_0_5.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

CleanerParams readParams(WEIGHTS::Model& model, std::size_t inputFrameDuration) {
    CleanerParams params(*model.first, inputFrameDuration);
    SettingReader const reader(model, "TALVO_", "_v0_0_5");
    params.settings.readGated(reader);
    // This key alone kept the older prefix.
    params.settings.readCompressRate(SettingReader(model, "NIMBA_", "_v0_0_5"));
    params.fitCompressRate();
    params.settings.backgroundSpeaker.read(reader);
    params.logFloor = 1000.0f;
    shareVorbisWindow(params, model);
    return params;
}

} // namespace

NoiseCleaner_v0_0_5::NoiseCleaner_v0_0_5(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : GatedCleaner(model, readParams(*model, inputFrameDuration)), network_(weight()),
      state(network_.stateSize, 0.0f) {
    makeRoom(network_, state);
}

void NoiseCleaner_v0_0_5::runNetwork() {
    NOISE_CLEANER_FUNCTIONS::calcRMForwardProp_GRU_Modify(state, features_, network_, buffers_);
}

} // namespace TALVO::NOISE_CANCELLER
