#include "noise_canceller/overlap_cleaner.hpp"
#include "noise_canceller/settings.hpp"
#include "noise_library/support/model_file.hpp"
#include "utils/path.hpp"

#include <gmock/gmock.h>

namespace {

using namespace TALVO;
using namespace NOISE_CANCELLER;
using noise_test::ModelFile;

/// Settings as a model with these records and this environment gives them, and what was printed.
struct Read {
    Settings settings;
    std::string printed;
};

Read readAll(std::map<std::string, std::string> const& environment, ModelFile const& records = {}) {
    noise_test::TemporaryFolder const folder;
    WEIGHTS::Model model{std::make_shared<WEIGHTS::Weight>(), {}};
    model.first->read(UTILS::Path(folder.write("m.nmw", records.plain()).wstring()));
    for (auto const& [key, value] : environment)
        model.second.insert<std::string>("P_" + key + "_v", value, CONTAINERS::AnyMap::KEEP);
    SettingReader const reader(model, "P_", "_v");
    Read result;
    testing::internal::CaptureStdout();
    result.settings.readGated(reader);
    result.settings.readRescale(reader, reader.flagStoredAs("OTHER_RESCALE", "ENABLE_RESCALE", true));
    result.settings.readCompressRate(reader);
    result.settings.backgroundSpeaker.read(reader);
    result.printed = testing::internal::GetCapturedStdout();
    return result;
}

TEST(Settings, HaveTheirDefaults) {
    auto const [s, printed] = readAll({{"CLIP_FIX_POINT", "7"},
                                       {"VOLUME_UP_PERCENT", "50"},
                                       {"RM_THRESHOLD", "0.1"},
                                       {"THRESH_CUT_REF_EN", "7"},
                                       {"RESCALE_REF_AMPL", "7"}});
    EXPECT_EQ(printed, "");
    EXPECT_EQ(s.smoothCoef, 1.0f);
    EXPECT_FALSE(s.rmModify || s.highFreqSmooth || s.clipFix || s.skipFrame || s.volumeUp || s.threshCut ||
                 s.rmThresholdOn || s.backgroundSpeaker.enabled);
    EXPECT_TRUE(s.rescale && s.backgroundSpeaker.varWindMode);
    // A value without its switch isn't read.
    EXPECT_EQ(s.clipFixPoint, 25000.0f);
    EXPECT_EQ(s.volumePercent, 0.0f);
    EXPECT_EQ(s.threshCutRefEn, 100.0f);
    EXPECT_EQ(s.rmThreshold, 0.5f);
    EXPECT_EQ(s.rescaleRefAmpl, 2000.0f);
    EXPECT_EQ(s.rescaleRefEn, 100.0f);
    EXPECT_EQ(s.compressRate, 2u);
    EXPECT_EQ(s.backgroundSpeaker.runFrameCount, 40u);
    EXPECT_EQ(s.backgroundSpeaker.runMinLen, 2u);
}

TEST(Settings, ComeFromTheEnvironmentFirstAndThenFromTheWeightFile) {
    ModelFile records;
    records.set("CONTROL_P_SMOOT_COEF_v", 0.25f).set("CONTROL_P_ENABLE_CLIP_FIX_v", "t");
    records.set("CONTROL_P_CLIP_FIX_POINT_v", 1000).set("CONTROL_P_HIGH_FREQ_SMOOT_v", "TRUE");
    records.set("CONTROL_P_COMPRESS_RATE_v", 3.0f).set("OTHER_RESCALE", "f");
    Settings const stored = readAll({}, records).settings;
    EXPECT_EQ(stored.smoothCoef, 0.25f);
    EXPECT_TRUE(stored.clipFix);
    EXPECT_EQ(stored.clipFixPoint, 1000.0f);
    EXPECT_FALSE(stored.highFreqSmooth) << "only t is true in a weight file";
    EXPECT_EQ(stored.compressRate, 2u) << "a record of another type isn't there";
    EXPECT_FALSE(stored.rescale);

    Settings const both = readAll({{"SMOOT_COEF", "0.5x"},
                                   {"ENABLE_CLIP_FIX", "t"},
                                   {"ENABLE_RESCALE", "TRUE"},
                                   {"COMPRESS_RATE", "1.9"}},
                                  records)
                              .settings;
    EXPECT_EQ(both.smoothCoef, 0.5f);
    EXPECT_FALSE(both.clipFix) << "only TRUE is true in the environment";
    EXPECT_TRUE(both.rescale);
    EXPECT_EQ(both.compressRate, 1u);
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

TEST(Settings, FollowTheRulesBetweenThem) {
    Settings const threshold =
        readAll({{"ENABLE_RM_THRESHOLD", "TRUE"}, {"ENABLE_RESCALE", "no"}, {"RESCALE_REF_AMPL", "3"}})
            .settings;
    EXPECT_EQ(threshold.rescaleRefAmpl, 3.0f);
    EXPECT_FALSE(threshold.rescale);

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
