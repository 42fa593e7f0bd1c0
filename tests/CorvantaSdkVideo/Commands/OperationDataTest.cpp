#include <CorvantaSdkVideo/Commands/VideoOperationData.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace corvanta {
namespace {

using Rate = CorvantaSdkVideoFrameRate;
using StoredMerge = VideoMergeData::SerializableMergeData;
using StoredEncoding = VideoEncodingData::SerializableEncodingData;

using MergeVideos = std::vector<CorvantaSdkVideoMergeVideoTrack>;
using MergeAudios = std::vector<CorvantaSdkVideoMergeAudioTrack>;

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(OperationData, IsWrittenInTheOrderOfItsFieldsAndReadBack) {
    const MergeVideos videos = {{{{0, 1}, {2, 3}}, 1280, {}}, {{}, {}, 720}};
    const MergeAudios audios = {{{{1, 4}}}, {}};
    const std::vector<std::pair<VideoMergeData, std::string>> merges = {
        {{{}, 640, 359.5, Rate::sixtyFps, videos, audios},
         R"({"width":640,"height":359.5,"videoTracks":[)"
         R"({"tracks":[{"fileIndex":0,"entryIndex":1},{"fileIndex":2,"entryIndex":3}],"width":1280},)"
         R"({"tracks":[],"height":720}],)"
         R"("audioTracks":[{"tracks":[{"fileIndex":1,"entryIndex":4}]},{"tracks":[]}],"framesRate":"60"})"},
        {{{}, {}, 1e300, Rate::unknown, {}, {}},
         R"({"height":1e+300,"videoTracks":[],"audioTracks":[],"framesRate":"0"})"},
    };
    for (const auto& [data, text] : merges) {
        EXPECT_EQ(jsonRepresentation(data.serializable()), text);
        const auto read = decode<StoredMerge>(text);
        ASSERT_TRUE(read) << text;
        EXPECT_EQ(read->width, data.width);
        EXPECT_EQ(read->height, data.height);
        EXPECT_EQ(read->videoTracks, data.videoTracks);
        EXPECT_EQ(read->audioTracks, data.audioTracks);
        EXPECT_EQ(read->framesRate, data.framesRate.rawValue());
    }
    const VideoEncodingData data{{}, 128, {}, {{1, 640, {}}, {0, {}, {}}}, {0, 2}, Rate::thirtyFps};
    const auto read = decode<StoredEncoding>(jsonRepresentation(data.serializable()));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->videoTracks, data.videoTracks);
    EXPECT_EQ(read->audioTracks, data.audioTracks);
    EXPECT_EQ(read->width, 128);
    EXPECT_EQ(read->height, std::nullopt);
}

TEST(OperationData, ThatCantBeWrittenHasNoText) {
    for (const double size : {infinite, -infinite, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(jsonRepresentation(StoredMerge{size, {}, {}, {}, "30"}), std::nullopt);
    }
    EXPECT_EQ(jsonRepresentation(StoredMerge{{}, {}, {}, {}, "\xff"}), std::nullopt);
}

TEST(OperationData, IsReadStrictlyButForWhatCanBeAbsent) {
    // Over "videoTracks", "audioTracks", "framesRate" as given, and what else stands in front of them.
    const auto form = [](const std::string& video, const std::string& audio = "[]",
                         const std::string& rate = R"("30")", const std::string& more = "") {
        return "{" + more + R"("videoTracks":)" + video + R"(,"audioTracks":)" + audio + R"(,"framesRate":)" +
               rate + "}";
    };
    struct Case {
        std::string text;
        bool isMerge = false;
        bool isEncoding = false;
    };
    const std::vector<Case> cases = {
        {form("[]", "[]", R"("31")"), true, true},
        {R"({"framesRate":"0","audioTracks":[],"more":{},"videoTracks":[],"width":null,"height":null})", true,
         true},
        {" " + form("[]", "[]", R"("")", R"("width":-1,"height":2e2,)") + " ", true, true},
        {form(R"([{"tracks":[]}])"), true, false},
        {form(R"([{"entryIndex":1,"width":null}])", "[3]"), false, true},
        {form(R"([{"entryIndex":9223372036854775807}])"), false, true},
        {""},
        {"[]"},
        {form("[]") + "x"},
        {form("[]", "[]", "\"\xff\"")},
        {R"({"videoTracks":[],"audioTracks":[]})"},
        {R"({"audioTracks":[],"framesRate":"30"})"},
        {form("[]", "[]", "30")},
        {form("[]", "null")},
        {form("[]", "[]", R"("30")", R"("width":"640",)")},
        {form("[]", "[]", R"("30")", R"("width":1e999,)")},
        {form("[{}]")},
        {form(R"([{"entryIndex":1.5}])")},
        {form(R"([{"entryIndex":18446744073709551615}])")},
        {form(R"([{"entryIndex":1,"height":"2"}])")},
        {form("[]", R"(["1"])")},
        {form(R"([{"tracks":[{"fileIndex":0}]}])")},
        {form("[]", R"([{"tracks":[true]}])")},
    };
    for (const auto& [text, isMerge, isEncoding] : cases) {
        EXPECT_EQ(decode<StoredMerge>(text).has_value(), isMerge) << text;
        EXPECT_EQ(decode<StoredEncoding>(text).has_value(), isEncoding) << text;
    }
    EXPECT_FALSE(decode<StoredMerge>(std::nullopt));
    EXPECT_FALSE(decode<StoredEncoding>(std::nullopt));
}

} // namespace
} // namespace corvanta
