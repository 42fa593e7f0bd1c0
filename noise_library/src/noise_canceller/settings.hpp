#pragma once

#include "noise_canceller/setting_reader.hpp"

#include <cstddef>

namespace TALVO::NOISE_CANCELLER {

struct BackgroundSpeakerSettings {
    bool enabled = false;
    float cutStartDb = 10.0f;
    float cutEndDb = 15.0f;
    std::size_t runFrameCount = 40;
    std::size_t runMinLen = 2;
    float utteranceLen = 2.0f;
    bool varWindMode = true;

    void read(SettingReader const& reader);
};

/// What a model's control file can change in a cleaner. Each class reads the groups it has; those
/// it doesn't have are off.
struct Settings {
    // Mask curve
    float smoothCoef = 1.0f; ///< (0, 1], the share of the new mask
    bool rmModify = false;   ///< soft curve instead of squaring
    bool highFreqSmooth = false;
    // Peak limit of the output
    bool clipFix = false;
    float clipFixPoint = 25000.0f; ///< 1 to 32768
    // Silent frames and gain
    bool skipFrame = false;
    bool volumeUp = false;
    float volumePercent = 0.0f; ///< strictly between 0 and 200
    // Energy gate
    bool threshCut = false;
    float threshCutRefEn = 100.0f; ///< 1 to 1000
    // Mask expansion below a level
    bool rmThresholdOn = false;
    float rmThreshold = 0.5f; ///< (0, 1]
    // Level normalisation before the network
    bool rescale = false;
    float rescaleRefAmpl = 2000.0f;
    float rescaleRefEn = 100.0f;
    // Band compression; 0 leaves every bin alone
    static constexpr int defaultCompressRate = 2;
    std::size_t compressRate = 0;
    BackgroundSpeakerSettings backgroundSpeaker;

    /// The groups of every version, in the order in which their warnings come.
    void readCommon(SettingReader const& reader);
    /// The same with what the gated versions have beside them, but for the compression.
    void readGated(SettingReader const& reader);
    /// The switch has been read by the caller. The references count only beside the mask threshold.
    void readRescale(SettingReader const& reader, bool enabled);
    void readCompressRate(SettingReader const& reader);

  private:
    void readMaskCurve(SettingReader const& reader);
    void readClipFix(SettingReader const& reader);
    void readSkipAndVolume(SettingReader const& reader);
    void readEnergyGate(SettingReader const& reader);
    void readRmThreshold(SettingReader const& reader);
};

} // namespace TALVO::NOISE_CANCELLER
