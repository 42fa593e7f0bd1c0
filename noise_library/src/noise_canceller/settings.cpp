#include "noise_canceller/settings.hpp"
#include "utils/printed_line.hpp"

#include <algorithm>

namespace TALVO::NOISE_CANCELLER {
namespace {

void warn(char const* text) { UTILS::printLine(text); }

} // namespace

void Settings::readCommon(SettingReader const& reader) {
    readMaskCurve(reader);
    readClipFix(reader);
    readEnergyGate(reader);
    readRmThreshold(reader);
}

void Settings::readGated(SettingReader const& reader) {
    readMaskCurve(reader);
    readClipFix(reader);
    readSkipAndVolume(reader);
    readEnergyGate(reader);
    readRmThreshold(reader);
    readRescale(reader, reader.flag("ENABLE_RESCALE", true));
}

void Settings::readMaskCurve(SettingReader const& reader) {
    smoothCoef = reader.number("SMOOT_COEF", 1.0f);
    if (!(smoothCoef > 0.0f && smoothCoef <= 1.0f)) {
        warn("WARNING OF SMOOTH COEF NUMBER VALUE. IT MUST BE iIN INTERVALK (0,1] \n DEFAULT VALUE 1.f");
        smoothCoef = 1.0f;
    }
    rmModify = reader.flag("SMOOT_RM_MODIFY", false);
    highFreqSmooth = reader.flag("HIGH_FREQ_SMOOT", false);
}

void Settings::readClipFix(SettingReader const& reader) {
    clipFix = reader.flag("ENABLE_CLIP_FIX", false);
    if (!clipFix)
        return;
    int const point = reader.whole("CLIP_FIX_POINT", 25000);
    if (point > 32768 || point < 1)
        warn("WARNING OF CLIP_FIX_POINT NUMBER VALUE. IT MUST BE IN INTERVALK (1,32768) \n DEFAULT VALUE "
             "25000");
    else
        clipFixPoint = static_cast<float>(point);
}

void Settings::readSkipAndVolume(SettingReader const& reader) {
    skipFrame = reader.flag("SKIP_FRAME", false);
    volumeUp = reader.flag("VOLUME_UP", false);
    if (!volumeUp)
        return;
    volumePercent = reader.number("VOLUME_UP_PERCENT", 0.0f);
    if (volumePercent > 0.0f && volumePercent < 200.0f) {
        if (!clipFix) {
            warn("WARNING: Enabled Clip fix, because VolumeUp is Enabled");
            clipFix = true;
        }
    } else {
        volumeUp = false;
        volumePercent = 0.0f;
    }
}

void Settings::readEnergyGate(SettingReader const& reader) {
    threshCut = reader.flag("ENABLE_THRESH_CUT", false);
    if (!threshCut)
        return;
    int const reference = reader.whole("THRESH_CUT_REF_EN", 100);
    if (reference > 1000 || reference < 1)
        warn("WARNING OF THRESH_CUT_REF VALUE. IT MUST BE iIN INTERVALK [1,1000] \n DEFAULT VALUE 100");
    else
        threshCutRefEn = static_cast<float>(reference);
}

void Settings::readRmThreshold(SettingReader const& reader) {
    rmThresholdOn = reader.flag("ENABLE_RM_THRESHOLD", false);
    if (!rmThresholdOn)
        return;
    rmThreshold = reader.number("RM_THRESHOLD", 0.5f);
    if (!(rmThreshold > 0.0f && rmThreshold <= 1.0f)) {
        warn("WARNING OF RM_THRESHOLD VALUE. IT MUST BE iIN INTERVALK [0.0,1.0] \n DEFAULT VALUE 0.5");
        rmThreshold = 0.5f;
    }
}

void Settings::readRescale(SettingReader const& reader, bool enabled) {
    rescale = enabled;
    if (!rmThresholdOn)
        return;
    rescaleRefAmpl = reader.number("RESCALE_REF_AMPL", 2000.0f);
    rescaleRefEn = reader.number("RESCALE_REF_EN", 100.0f);
}

void Settings::readCompressRate(SettingReader const& reader) {
    // Beyond the upper bound no spectrum could be divided, and sizes could not be computed.
    compressRate =
        static_cast<std::size_t>(std::clamp(reader.whole("COMPRESS_RATE", defaultCompressRate), 0, 30));
}

void BackgroundSpeakerSettings::read(SettingReader const& reader) {
    enabled = reader.flag("ENABLE_BACKGROUND_SPEAKER_FIX", false);
    cutStartDb = reader.number("BACKGROUND_SPEAKER_FIX_CUT_START_DB", 10.0f);
    cutEndDb = reader.number("BACKGROUND_SPEAKER_FIX_CUT_END_DB", 15.0f);
    // Held to what a list of frames can be; a NaN counts as one.
    float const frames = reader.number("BACKGROUND_SPEAKER_FIX_RUN_FRAME_COUNT", 40.0f);
    runFrameCount = frames >= 1.0f ? static_cast<std::size_t>(std::min(frames, 1e6f)) : 1;
    // A negative one is beyond any length, so that the window never shrinks.
    runMinLen = static_cast<std::size_t>(reader.whole("BACKGROUND_SPEAKER_FIX_RUN_MIN_LEN", 2));
    utteranceLen = reader.number("BACKGROUND_SPEAKER_FIX_UTTERANCE_LEN", 2.0f);
    varWindMode = reader.flag("BACKGROUND_SPEAKER_FIX_VAR_WIND_MODE", true);
}

} // namespace TALVO::NOISE_CANCELLER
