#include "noise_canceller/settings.hpp"

#include <gmock/gmock.h>

namespace {

// Values and where they come from are compared with the reference; here stand the warnings and the bounds.

using namespace TALVO;
using namespace NOISE_CANCELLER;

/// Settings as a model with this environment gives them, and what was printed.
struct Read {
    Settings settings;
    std::string printed;
};

Read readAll(std::map<std::string, std::string> const& environment) {
    WEIGHTS::Model model{std::make_shared<WEIGHTS::Weight>(), {}};
    for (auto const& [key, value] : environment)
        model.second.insert<std::string>("P_" + key + "_v", value, CONTAINERS::AnyMap::KEEP);
    SettingReader const reader(model, "P_", "_v");
    Read result;
    testing::internal::CaptureStdout();
    result.settings.readGated(reader);
    result.settings.readCompressRate(reader);
    result.settings.backgroundSpeaker.read(reader);
    result.printed = testing::internal::GetCapturedStdout();
    return result;
}

TEST(Settings, TakeTheDefaultWithAWarningOutOfRange) {
    constexpr char smooth[] =
        "WARNING OF SMOOTH COEF NUMBER VALUE. IT MUST BE iIN INTERVALK (0,1] \n DEFAULT VALUE 1.f\n";
    constexpr char clip[] =
        "WARNING OF CLIP_FIX_POINT NUMBER VALUE. IT MUST BE IN INTERVALK (1,32768) \n DEFAULT VALUE 25000\n";
    constexpr char gate[] =
        "WARNING OF THRESH_CUT_REF VALUE. IT MUST BE iIN INTERVALK [1,1000] \n DEFAULT VALUE 100\n";
    constexpr char threshold[] =
        "WARNING OF RM_THRESHOLD VALUE. IT MUST BE iIN INTERVALK [0.0,1.0] \n DEFAULT VALUE 0.5\n";
    struct Case {
        char const* key;
        char const* value;
        float Settings::*field;
        float result;
        char const* printed;
    };
    for (Case const& c : {Case{"SMOOT_COEF", "0", &Settings::smoothCoef, 1.0f, smooth},
                          {"SMOOT_COEF", "1.01", &Settings::smoothCoef, 1.0f, smooth},
                          {"SMOOT_COEF", "nan", &Settings::smoothCoef, 1.0f, smooth},
                          {"SMOOT_COEF", "1", &Settings::smoothCoef, 1.0f, ""},
                          {"CLIP_FIX_POINT", "0", &Settings::clipFixPoint, 25000.0f, clip},
                          {"CLIP_FIX_POINT", "32769", &Settings::clipFixPoint, 25000.0f, clip},
                          {"CLIP_FIX_POINT", "32768.9", &Settings::clipFixPoint, 32768.0f, ""},
                          {"THRESH_CUT_REF_EN", "0", &Settings::threshCutRefEn, 100.0f, gate},
                          {"THRESH_CUT_REF_EN", "1001", &Settings::threshCutRefEn, 100.0f, gate},
                          {"THRESH_CUT_REF_EN", "1000", &Settings::threshCutRefEn, 1000.0f, ""},
                          {"RM_THRESHOLD", "0", &Settings::rmThreshold, 0.5f, threshold},
                          {"RM_THRESHOLD", "1.5", &Settings::rmThreshold, 0.5f, threshold},
                          {"RM_THRESHOLD", "1", &Settings::rmThreshold, 1.0f, ""}}) {
        auto const [s, printed] = readAll({{"ENABLE_CLIP_FIX", "TRUE"},
                                           {"ENABLE_THRESH_CUT", "TRUE"},
                                           {"ENABLE_RM_THRESHOLD", "TRUE"},
                                           {c.key, c.value}});
        EXPECT_EQ(s.*c.field, c.result) << c.key << " " << c.value;
        EXPECT_EQ(printed, c.printed) << c.key << " " << c.value;
    }
}

TEST(Settings, TurnOnTheClipFixWithAVolumeInRangeAndHoldSizesToWhatCanBe) {
    for (auto const& [percent, on] :
         {std::pair{"0", false}, {"200", false}, {"-1", false}, {"199.5", true}}) {
        auto const [s, printed] =
            readAll({{"VOLUME_UP", "TRUE"}, {"VOLUME_UP_PERCENT", percent}, {"CLIP_FIX_POINT", "9"}});
        EXPECT_EQ(s.volumeUp, on) << percent;
        EXPECT_EQ(s.volumePercent, on ? 199.5f : 0.0f);
        EXPECT_EQ(s.clipFix, on);
        EXPECT_EQ(s.clipFixPoint, 25000.0f);
        EXPECT_EQ(printed, on ? "WARNING: Enabled Clip fix, because VolumeUp is Enabled\n" : "");
    }
    // What no list of frames or bands can be is held to what can.
    Settings const odd = readAll({{"BACKGROUND_SPEAKER_FIX_RUN_FRAME_COUNT", "nan"},
                                  {"COMPRESS_RATE", "-3"},
                                  {"BACKGROUND_SPEAKER_FIX_RUN_MIN_LEN", "-2"}})
                             .settings;
    EXPECT_EQ(odd.backgroundSpeaker.runFrameCount, 1u);
    EXPECT_EQ(odd.backgroundSpeaker.runMinLen, 0u);
    EXPECT_EQ(odd.compressRate, 0u);
}

} // namespace
