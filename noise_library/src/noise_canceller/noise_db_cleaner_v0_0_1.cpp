#include "noise_canceller/noise_db_cleaner_v0_0_1.hpp"

#include <cmath>

namespace TALVO::NOISE_CANCELLER {
namespace {

CleanerParams readParams(WEIGHTS::Model& model, std::size_t inputFrameDuration) {
    CleanerParams params(*model.first, inputFrameDuration);
    SettingReader const reader(model, "NIMBA_", "_v0_0_5");
    params.settings.readGated(reader);
    params.settings.readCompressRate(reader);
    params.fitCompressRate();
    params.logFloor = 1000.0f;
    shareVorbisWindow(params, model);
    return params;
}

} // namespace

NoiseDBCleaner_v0_0_1::NoiseDBCleaner_v0_0_1(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration)
    : GatedCleaner(model, readParams(*model, inputFrameDuration)), network_(weight()),
      state(network_.stateSize, 0.0f) {
    makeRoom(network_, state);
}

bool NoiseDBCleaner_v0_0_1::cleanNoise(std::vector<float>& inOutVector) {
    bool const cleaned = GatedCleaner::cleanNoise(inOutVector);
    inOutVector.assign(1, level());
    return cleaned;
}

bool NoiseDBCleaner_v0_0_1::resetSession() {
    start();
    state.assign(network_.stateSize, 0.0f);
    removedSum_ = 0.0;
    removedFrames_ = 0;
    return true;
}

void NoiseDBCleaner_v0_0_1::runNetwork() {
    NOISE_CLEANER_FUNCTIONS::calcRMForwardProp_GRU_Modify(state, features_, network_, buffers_);
}

/// The mean square of a frame is found from its spectrum (Parseval): the first and the last bin
/// stand for themselves, each other one for its mirror image too.
void NoiseDBCleaner_v0_0_1::maskReady() {
    double sum = 0.0;
    for (std::size_t i = 0; i < spectrum_.size(); ++i) {
        double const taken = 1.0 - static_cast<double>(saved_rm[i]);
        double const re = static_cast<double>(spectrum_[i].real()) * taken;
        double const im = static_cast<double>(spectrum_[i].imag()) * taken;
        bool const single = i == 0 || i + 1 == spectrum_.size();
        sum += (single ? 1.0 : 2.0) * (re * re + im * im);
    }
    auto const length = static_cast<double>(params_.frameLength);
    removedSum_ += sum / (length * length);
    ++removedFrames_;
}

float NoiseDBCleaner_v0_0_1::level() const {
    constexpr double floorDb = -120.0;
    constexpr double fullScale = 32768.0 * 32768.0;
    if (removedFrames_ == 0)
        return static_cast<float>(floorDb);
    double const level = 10.0 * std::log10(removedSum_ / static_cast<double>(removedFrames_) / fullScale);
    return static_cast<float>(level > floorDb ? level : floorDb);
}

} // namespace TALVO::NOISE_CANCELLER
