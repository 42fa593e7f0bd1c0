#include "noise_canceller/settings.hpp"

#include <gmock/gmock.h>

namespace {

// Values and where they come from are compared with the reference; here stands what no value shows.

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

TEST(Settings, WarnOutOfRange) {
    constexpr char smooth[] =
        "WARNING OF SMOOTH COEF NUMBER VALUE. IT MUST BE iIN INTERVALK (0,1] \n DEFAULT VALUE 1.f\n";
    constexpr char clip[] =
        "WARNING OF CLIP_FIX_POINT NUMBER VALUE. IT MUST BE IN INTERVALK (1,32768) \n DEFAULT VALUE 25000\n";
    constexpr char gate[] =
        "WARNING OF THRESH_CUT_REF VALUE. IT MUST BE iIN INTERVALK [1,1000] \n DEFAULT VALUE 100\n";
    constexpr char threshold[] =
        "WARNING OF RM_THRESHOLD VALUE. IT MUST BE iIN INTERVALK [0.0,1.0] \n DEFAULT VALUE 0.5\n";
    constexpr char volume[] = "WARNING: Enabled Clip fix, because VolumeUp is Enabled\n";
    for (auto const& [onSwitch, key, values, printed] :
         std::initializer_list<std::tuple<char const*, char const*, std::vector<char const*>, char const*>>{
             {"", "SMOOT_COEF", {"0", "1.01", "nan"}, smooth},
             {"", "SMOOT_COEF", {"0.001", "1"}, ""},
             {"ENABLE_CLIP_FIX", "CLIP_FIX_POINT", {"0", "32769"}, clip},
             {"ENABLE_CLIP_FIX", "CLIP_FIX_POINT", {"1", "32768.9"}, ""},
             {"ENABLE_THRESH_CUT", "THRESH_CUT_REF_EN", {"0", "1001"}, gate},
             {"ENABLE_THRESH_CUT", "THRESH_CUT_REF_EN", {"1", "1000"}, ""},
             {"ENABLE_RM_THRESHOLD", "RM_THRESHOLD", {"0", "1.5"}, threshold},
             {"ENABLE_RM_THRESHOLD", "RM_THRESHOLD", {"1"}, ""},
             {"VOLUME_UP", "VOLUME_UP_PERCENT", {"0", "200", "-1"}, ""},
             {"VOLUME_UP", "VOLUME_UP_PERCENT", {"199.5"}, volume}})
        for (char const* const value : values)
            EXPECT_EQ(readAll({{onSwitch, "TRUE"}, {key, value}}).printed, printed) << key << " " << value;
}

TEST(Settings, HoldSizesToWhatAListOfFramesOrBandsCanBe) {
    Settings const odd = readAll({{"BACKGROUND_SPEAKER_FIX_RUN_FRAME_COUNT", "nan"},
                                  {"COMPRESS_RATE", "-3"},
                                  {"BACKGROUND_SPEAKER_FIX_RUN_MIN_LEN", "-2"}})
                             .settings;
    EXPECT_EQ(odd.backgroundSpeaker.runFrameCount, 1u);
    EXPECT_EQ(odd.backgroundSpeaker.runMinLen, SIZE_MAX - 1);
    EXPECT_EQ(odd.compressRate, 0u);
}

} // namespace
