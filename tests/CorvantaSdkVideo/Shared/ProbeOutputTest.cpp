#include <CorvantaSdkVideo/Shared/FFMPEGCommands/ProbeOutput.hpp>

#include <gtest/gtest.h>

#include <csignal>

namespace corvanta {
namespace {

std::string withStreams(const std::string& streams) {
    return R"({"format": {}, "streams": [)" + streams + "]}";
}

TEST(ProbeOutputTest, AWholeRecord) {
    const auto probe = parseProbeOutput(R"({
        "streams": [
            {"index": 0, "codec_type": "video", "codec_name": "h264", "codec_tag_string": "avc1", "width": 1920,
             "height": 1080, "pix_fmt": "yuv420p", "bit_rate": "334000", "r_frame_rate": "30000/1001",
             "duration": "2.0029", "side_data_list": [{"rotation": 180}, {"side_data_type": "x"}, {"rotation": -90}]},
            {"index": 1, "codec_type": "data", "duration": "nan"},
            {"index": 2, "codec_type": "audio", "codec_name": "aac", "codec_tag_string": "mp4a", "sample_fmt": "fltp",
             "bit_rate": "+96000", "sample_rate": "48000", "channels": 2, "channel_layout": "stereo", "duration": "-1.9999"},
            {"index": 4, "codec_type": "video", "width": 90, "disposition": {"attached_pic": 1}},
            {"index": 3, "codec_type": "video", "width": 10, "height": 20, "side_data_list": [{"rotation": 270}],
             "disposition": {"attached_pic": 0}}],
        "format": {"size": "104362", "duration": "1.0019999", "format_name": "mov,mp4"}})");
    ASSERT_TRUE(probe);
    EXPECT_EQ(probe->size, 104362);
    EXPECT_EQ(probe->duration, 1.0019999);
    EXPECT_EQ(probe->format, "mov,mp4");
    ASSERT_EQ(probe->videos.size(), 2U);
    EXPECT_EQ(probe->covers, std::vector<std::int64_t>{4});
    const auto& video = probe->videos[0];
    EXPECT_EQ(video, CorvantaSdkVideoTrackInformation(9, 1920, 1080, "h264", "avc1", "yuv420p", 1,
                                                      "30000/1001", -90, 1));
    EXPECT_EQ(video.index, 0);
    EXPECT_EQ(video.bitRate, 334000);
    EXPECT_EQ(video.durationMillis, 2002);
    EXPECT_EQ(video.rotatedWidth, 1920);
    EXPECT_EQ(probe->videos[1].rotatedWidth, 20);
    EXPECT_EQ(probe->videos[1].rotatedHeight, 10);
    EXPECT_EQ(probe->videos[1].durationMillis, 0);
    ASSERT_EQ(probe->audios.size(), 1U);
    const auto& audio = probe->audios[0];
    EXPECT_EQ(audio,
              (CorvantaSdkVideoAudioTrackInformation{9, "aac", "mp4a", "fltp", 1, 48000, 2, "stereo", 1}));
    EXPECT_EQ(audio.index, 2);
    EXPECT_EQ(audio.bitRate, 96000);
    EXPECT_EQ(audio.durationMillis, -1999);
}

TEST(ProbeOutputTest, WhatIsNoProbeOutput) {
    const std::string deep(100000, '[');
    for (const std::string& refused : std::vector<std::string>{
             "", "{}", "null", "[]", "{", R"({"format": {}})", R"({"streams": []})",
             R"({"format": [], "streams": []})", R"({"format": {}, "streams": {}})", withStreams("{}, []"),
             withStreams("{}, null"), withStreams("") + "x",
             "{\"format\": {\"format_name\": \"\xff\"}, \"streams\": []}", deep, std::string(1000, '\0')}) {
        EXPECT_FALSE(parseProbeOutput(refused)) << refused.substr(0, 100);
    }
    EXPECT_TRUE(parseProbeOutput(withStreams("")));
}

TEST(ProbeOutputTest, ValuesOfOtherTypesCountAsAbsent) {
    for (const char* value : {"null", "[]", "{}", "7.5", "\"\"", "\" 7\"", "\"7x\"", "\"+-7\"", "\"0x7\"",
                              "18446744073709551615"}) {
        SCOPED_TRACE(value);
        std::string members = R"("codec_type": "video")";
        for (const char* key :
             {"index", "width", "height", "duration", "bit_rate", "side_data_list", "disposition"}) {
            members += std::string(", \"") + key + "\": " + value;
        }
        const auto probe =
            parseProbeOutput(withStreams("{" + members + R"(}, {"codec_type": )" + value + "}"));
        ASSERT_TRUE(probe);
        ASSERT_EQ(probe->videos.size(), 1U);
        const auto& track = probe->videos[0];
        EXPECT_EQ(track.index + track.width + track.height + track.rotatedWidth + track.bitRate +
                      track.rotation + track.durationMillis,
                  0);
    }
    const auto numbers = parseProbeOutput(
        R"({"format": {"size": 7, "duration": 7, "format_name": 7}, "streams": [
            {"codec_type": "audio", "index": "1", "sample_rate": 48000, "bit_rate": 1, "channels": "2", "codec_name": 1,
             "codec_tag_string": [], "sample_fmt": {}, "channel_layout": null, "duration": 3},
            {"codec_type": "video", "bit_rate": 1, "codec_name": 1, "pix_fmt": 2, "r_frame_rate": 30, "duration": 3},
            {"codec_type": "Video"}, {"codec_type": "subtitle"}, {}]})");
    ASSERT_TRUE(numbers);
    EXPECT_EQ(numbers->size, 0);
    EXPECT_EQ(numbers->duration, 0);
    EXPECT_EQ(numbers->format, "");
    ASSERT_EQ(numbers->audios.size(), 1U);
    EXPECT_EQ(numbers->audios[0], CorvantaSdkVideoAudioTrackInformation{});
    EXPECT_EQ(numbers->audios[0].index + numbers->audios[0].bitRate + numbers->audios[0].durationMillis, 0);
    EXPECT_EQ(numbers->videos,
              std::vector{CorvantaSdkVideoTrackInformation(0, 0, 0, "", "", "", 0, "", 0, 0)});
}

TEST(ProbeOutputTest, Rotation) {
    std::string many = R"([{"rotation": 90})";
    for (int entry = 0; entry < 10000; ++entry) {
        many += R"(, {"side_data_type": "x", "rotation": "180"})";
    }
    many += "]";
    for (const auto& [list, rotation] :
         {std::pair(many, std::int64_t{90}),
          {R"([{"rotation": 90}, {"rotation": 1.5}, {"rotation": null}])", 90},
          {R"([{"rotation": -9223372036854775808}])", std::numeric_limits<std::int64_t>::min()},
          {R"([{"rotation": 9223372036854775808}])", 0},
          {R"([{"rotation": 90}, 3])", 0},
          {R"({"rotation": 90})", 0},
          {R"([{"rotation": 90}, {"rotation": 0}])", 0}}) {
        const auto probe =
            parseProbeOutput(withStreams(R"({"codec_type": "video", "side_data_list": )" + list + "}"));
        ASSERT_TRUE(probe);
        EXPECT_EQ(probe->videos.at(0).rotation, rotation);
    }
}

TEST(ProbeOutputDeathTest, DurationsThatMillisecondsCannotHold) {
    constexpr const char* notFinite =
        "Fatal error: Double value cannot be converted to Int64 because it is either infinite or NaN\n";
    constexpr const char* tooSmall = "Fatal error: Double value cannot be converted to Int64 because the "
                                     "result would be less than Int64.min\n";
    constexpr const char* tooLarge = "Fatal error: Double value cannot be converted to Int64 because the "
                                     "result would be greater than Int64.max\n";
    const auto probeOf = [](const std::string& kind, const std::string& duration) {
        return parseProbeOutput(
            withStreams(R"({"codec_type": ")" + kind + R"(", "duration": ")" + duration + "\"}"));
    };
    for (const char* kind : {"video", "audio"}) {
        for (const char* text : {"inf", "-inf", "nan"}) {
            EXPECT_EXIT(probeOf(kind, text), testing::KilledBySignal(SIGABRT), notFinite) << text;
        }
        // A file can state these.
        for (const char* text :
             {"1e306", "-9223372036854777.9", "9223372036854775.808", "+1e17", "10000000001"}) {
            EXPECT_FALSE(probeOf(kind, text)) << text;
        }
        EXPECT_TRUE(probeOf(kind, "10000000000"));
    }
    for (const auto& [seconds, message] : {std::pair(1e306, notFinite),
                                           {-9223372036854777.9, tooSmall},
                                           {9223372036854775.808, tooLarge},
                                           {1e17, tooLarge}}) {
        EXPECT_EXIT(millisecondsFromSeconds(seconds), testing::KilledBySignal(SIGABRT), message) << seconds;
    }
    EXPECT_EQ(millisecondsFromSeconds(-9223372036854775.808), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(millisecondsFromSeconds(9223372036854774.0), 9223372036854773760);
    EXPECT_EQ(millisecondsFromSeconds(-0.0019), -1);
}

} // namespace
} // namespace corvanta
